// SPDX-License-Identifier: BSD-3-Clause
#include "Ports/VRTPorts.h"

#include "Platform/Foundation/NSClassTable.h"
#include "Platform/QuartzComposer/QCPatch.h"

#include <map>
#include <utility>

namespace {

std::map<std::string, VRTParameterViewFactory>& factories() {
  static std::map<std::string, VRTParameterViewFactory> table;
  return table;
}

NSTarnView* makeParameterView(const char* portClass, QCObjectPort& port) {
  const auto entry = factories().find(portClass);
  if (entry == factories().end()) return nullptr;
  const VRTParameterViewFactory factory = entry->second;  // a factory may register others while it runs
  return factory(port);
}

// Patches make ports with their keys; made by name a port has none.
const NSClassRegistration kGradientPortClass("VRTGradientPort", "QCObjectPort",
                                             [] { return std::make_shared<VRTGradientPort>(""); });
const NSClassRegistration kHistogramPortClass("VRTHistogramPort", "QCObjectPort",
                                              [] { return std::make_shared<VRTHistogramPort>(""); });
const NSClassRegistration kOpaqueDataPortClass("VRTOpaqueDataPort", "QCObjectPort",
                                               [] { return std::make_shared<VRTOpaqueDataPort>(""); });

}  // namespace

ParameterView::~ParameterView() = default;

VRTOpaqueDataViewing::~VRTOpaqueDataViewing() = default;

void VRTRegisterParameterViewFactory(const std::string& portClass, VRTParameterViewFactory factory) {
  if (factory) {
    factories()[portClass] = std::move(factory);
  } else {
    factories().erase(portClass);
  }
}

NSTarnView* VRTGradientPort::setupParameterView() {
  return makeParameterView("VRTGradientPort", *this);
}

void VRTGradientPort::resetParameterView(NSTarnView*) {}

NSTarnView* VRTHistogramPort::setupParameterView() {
  return makeParameterView("VRTHistogramPort", *this);
}

void VRTHistogramPort::resetParameterView(NSTarnView*) {}

NSTarnView* VRTOpaqueDataPort::setupParameterView() {
  auto* viewing = dynamic_cast<VRTOpaqueDataViewing*>(node());
  return viewing ? viewing->viewForOpaqueDataPort(this) : nullptr;
}

void VRTOpaqueDataPort::resetParameterView(NSTarnView*) {}
