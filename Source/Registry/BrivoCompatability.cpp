// SPDX-License-Identifier: BSD-3-Clause
#include "Registry/BrivoCompatability.h"

#include "Platform/Foundation/NSClassTable.h"

namespace {

const NSClassRegistration kManagerClass("TarnEffectManager", "VRTNodeManager",
                                        [] { return std::make_shared<TarnEffectManager>(); });
const NSClassRegistration kGradientPortClass("TarnGradientPort", "VRTGradientPort",
                                             [] { return std::make_shared<TarnGradientPort>(""); });
const NSClassRegistration kHistogramPortClass("TarnHistogramPort", "VRTHistogramPort",
                                              [] { return std::make_shared<TarnHistogramPort>(""); });
const NSClassRegistration kOpaqueDataPortClass("TarnOpaqueDataPort", "VRTOpaqueDataPort",
                                               [] { return std::make_shared<TarnOpaqueDataPort>(""); });
const NSClassRegistration kGradientClass("TarnGradient", "VRTGradient",
                                         [] { return std::make_shared<TarnGradient>(); });
const NSClassRegistration kHistogramClass("TarnHistogram", "VRTHistogram",
                                          [] { return std::make_shared<TarnHistogram>(); });
const NSClassRegistration kOpaqueDataClass("TarnOpaqueData", "VRTOpaqueData",
                                           [] { return std::make_shared<TarnOpaqueData>(); });

}  // namespace

void TarnEffectManager::initialize() {}

std::string TarnEffectManager::className() const {
  return "TarnEffectManager";
}

std::string TarnGradientPort::className() const {
  return "TarnGradientPort";
}

std::string TarnHistogramPort::className() const {
  return "TarnHistogramPort";
}

std::string TarnOpaqueDataPort::className() const {
  return "TarnOpaqueDataPort";
}

std::string TarnGradient::className() const {
  return "TarnGradient";
}

std::string TarnHistogram::className() const {
  return "TarnHistogram";
}

std::string TarnOpaqueData::className() const {
  return "TarnOpaqueData";
}
