// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradient.h"

#include "Channels/kernels/GradientTable.h"
#include "TarnCore/TCColor.h"

namespace {

struct Ramp {
  double start[3];
  double end[3];
};
constexpr Ramp kRedToBlue{{1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}};
constexpr Ramp kBlackToWhite{{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}};
constexpr Ramp kWhiteToBlack{{1.0, 1.0, 1.0}, {0.0, 0.0, 0.0}};

const Ramp& rampOf(std::int32_t kind) {
  if (kind == 1) return kBlackToWhite;
  if (kind == 2) return kWhiteToBlack;
  return kRedToBlue;
}

void addDefaults(VRTChannelGradient& gradient) {
  const auto& [start, end] = rampOf(gradient.defaultKind);
  gradient.rgbFolder.addSample(start[0], start[1], start[2], 0.0, 0.5, VRTGradientSmooth);
  gradient.rgbFolder.addSample(end[0], end[1], end[2], 1.0, 0.5, VRTGradientSmooth);
  gradient.rgbFolder.sortAndRename();
  gradient.alphaFolder.addSample(1.0, 0.0, 0.5, VRTGradientSmooth);
  gradient.alphaFolder.sortAndRename();
}

template <class Stored>
void fillTable(const VRTChannelGradient& gradient, double time, Stored* out, std::uint32_t count) {
  VRTGradientLookup color;
  VRTGradientLookup opacity;
  gradient.rgbFolder.getLookup(time, color);
  gradient.alphaFolder.getLookup(time, opacity);
  vorto::kernels::gradientTable({color.begin(), color.size()}, {opacity.begin(), opacity.size()}, out, count);
}

}  // namespace

VRTChannelGradient::VRTChannelGradient() {
  addDefaults(*this);
}

std::unique_ptr<VRTChannelBase> VRTChannelGradient::clone() const {
  return std::make_unique<VRTChannelGradient>(*this);
}

void VRTChannelGradient::reset() {
  VRTChannelFolder::reset();
  addDefaults(*this);
}

void VRTChannelGradient::getColor(double time, double position, VortoColor* out) const {
  if (!out) return;
  VRTGradientLookup color;
  VRTGradientLookup opacity;
  rgbFolder.getLookup(time, color);
  alphaFolder.getLookup(time, opacity);
  float argb[4] = {0.0F, 0.0F, 0.0F, 0.0F};
  alphaFolder.getARGBFromLookup(position, argb, opacity);
  rgbFolder.getARGBFromLookup(position, argb, color);
  *out = VortoColor(VortoColor::RGB, argb[1], argb[2], argb[3], argb[0]);
}

void VRTChannelGradient::getGradient(double time, std::uint8_t* out, std::uint32_t count) const {
  fillTable(*this, time, out, count);
}

void VRTChannelGradient::getGradient(double time, std::uint16_t* out, std::uint32_t count) const {
  fillTable(*this, time, out, count);
}

void VRTChannelGradient::getGradient(double time, float* out, std::uint32_t count) const {
  fillTable(*this, time, out, count);
}
