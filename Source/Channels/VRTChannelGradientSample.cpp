// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradientSample.h"

VRTChannelGradientSample::VRTChannelGradientSample(const VortoString&, double samplePosition, double sampleMiddle,
                                                   std::int32_t kind)
    : position(samplePosition), middle(sampleMiddle), interpolation(kind) {}

std::unique_ptr<VRTChannelBase> VRTChannelGradientSample::clone() const {
  return std::make_unique<VRTChannelGradientSample>(*this);
}

VRTChannelGradientSampleRGB::VRTChannelGradientSampleRGB(const VortoString& ignoredName, double r, double g, double b,
                                                         double samplePosition, double sampleMiddle, std::int32_t kind)
    : VRTChannelGradientSample(ignoredName, samplePosition, sampleMiddle, kind), red(r), green(g), blue(b) {}

std::unique_ptr<VRTChannelBase> VRTChannelGradientSampleRGB::clone() const {
  return std::make_unique<VRTChannelGradientSampleRGB>(*this);
}

VRTChannelGradientSampleAlpha::VRTChannelGradientSampleAlpha(const VortoString& ignoredName, double opacity,
                                                             double samplePosition, double sampleMiddle,
                                                             std::int32_t kind)
    : VRTChannelGradientSample(ignoredName, samplePosition, sampleMiddle, kind), alpha(opacity) {}

std::unique_ptr<VRTChannelBase> VRTChannelGradientSampleAlpha::clone() const {
  return std::make_unique<VRTChannelGradientSampleAlpha>(*this);
}
