// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTChannelGradientFolder.h"

class VortoColor;

// A gradient parameter: a color folder and an opacity folder, evaluated together (see VRTChannelGradientFolder). Its
// own list of descendants stays empty.
class TARN_EXPORT VRTChannelGradient : public VRTChannelFolder {
 public:
  // Red at 0 to blue at 1 and opacity 1 at 0, all smooth with middle 0.5; default kind 0.
  VRTChannelGradient();
  // Copies the name and the default kind. The folders of the copy are empty: whole gradients travel as state values.
  VRTChannelGradient(const VRTChannelGradient& source) = default;
  std::unique_ptr<VRTChannelBase> clone() const override;

  // Adds the two color samples of the default kind at 0 and 1 and opacity 1 at 0, and sorts and renames both folders.
  // Samples that are there already stay, except at those positions, where the new ones replace them.
  void reset() override;

  // The color at a position, stored as RGB. Components that the folders leave unwritten are 0. A null `out` is ignored.
  void getColor(double time, double position, VortoColor* out) const;

  // Fill `count` entries of four components (alpha, red, green, blue), entry i evaluated at i / (count - 1). The result
  // does not depend on the instruction set.
  //  - Bytes and words: each component as a float, times 255, truncated toward zero to a 32-bit integer, of which the
  //    low byte or word is stored; words too hold 0 to 255 for components in range. Beyond 32 bits the integer is the
  //    nearest one that fits; NaN gives 0.
  //  - Floats: unscaled; any NaN is written as the same quiet one.
  // Components that a folder leaves unwritten are 0. Count 0 writes nothing; count 1 evaluates before the first sample.
  void getGradient(double time, std::uint8_t* out, std::uint32_t count) const;
  void getGradient(double time, std::uint16_t* out, std::uint32_t count) const;
  void getGradient(double time, float* out, std::uint32_t count) const;

  VRTChannelGradientRGBFolder rgbFolder;
  VRTChannelGradientAlphaFolder alphaFolder;
  std::int32_t defaultKind = 0;  // what reset() adds: 1 black to white, 2 white to black, any other red to blue
};
