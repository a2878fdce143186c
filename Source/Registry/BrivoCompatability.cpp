// SPDX-License-Identifier: BSD-3-Clause
#include "Registry/BrivoCompatability.h"

#include "Platform/Foundation/NSClassTable.h"

namespace {

const NSClassRegistration managerClass("TarnEffectManager", "VRTNodeManager",
                                       [] { return std::make_shared<TarnEffectManager>(); });
const NSClassRegistration gradientPortClass("TarnGradientPort", "VRTGradientPort",
                                            [] { return std::make_shared<TarnGradientPort>(""); });
const NSClassRegistration histogramPortClass("TarnHistogramPort", "VRTHistogramPort",
                                             [] { return std::make_shared<TarnHistogramPort>(""); });
const NSClassRegistration opaqueDataPortClass("TarnOpaqueDataPort", "VRTOpaqueDataPort",
                                              [] { return std::make_shared<TarnOpaqueDataPort>(""); });
const NSClassRegistration gradientClass("TarnGradient", "VRTGradient", [] { return std::make_shared<TarnGradient>(); });
const NSClassRegistration histogramClass("TarnHistogram", "VRTHistogram",
                                         [] { return std::make_shared<TarnHistogram>(); });
const NSClassRegistration opaqueDataClass("TarnOpaqueData", "VRTOpaqueData",
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
