// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/Power.h"

#include <cstddef>
#include <optional>
#include <type_traits>

namespace vorto::effects {

// One channel's levels, prepared for floats. A value is stretched, (value - blackIn) / inputSpan, or made a step,
// shaped, and laid on the output range, blackOut + value * outputSpan; of an output range without extent there is
// blackOut alone, whatever the value. A neutral stage changes nothing.
struct FloatStage {
  bool isNeutral = true;
  bool isStep = false;              // 0 below blackIn, 1 from it on, instead of the stretch
  bool isLimit = false;             // what lies between 0 and 1 becomes 0, instead of the power
  std::optional<PowerTable> power;  // of values above 0
  float blackIn = 0;
  float inputSpan = 1;
  float blackOut = 0;
  float outputSpan = 1;
};

// All colors have the common stage first, then their own.
struct FloatLevels {
  FloatStage common, red, green, blue, alpha;

  bool keepsColor() const { return common.isNeutral && red.isNeutral && green.isNeutral && blue.isNeutral; }
};

// Puts the straight color of each pixel, red, green, blue, alpha, and its alpha, through their stages.
//
// Premultiplication is taken off and put back with the new alpha. Alpha keeps to 0 to 1 as it does at integer depths,
// before it is shaped and after (NaN becomes 0), unless its stage is neutral. Where alpha is not above 0 there is
// nothing to take off: the color is taken as it stands, and stays when the new alpha is not above 0 either. The rows do
// not overlap. Layout is RGBAFloat.
template <class Layout>
requires std::is_same_v<Layout, RGBAFloat>
void levelsRow(const float* in, float* out, std::size_t count, const FloatLevels& levels);

// The definition.
template <class Layout>
requires std::is_same_v<Layout, RGBAFloat>
void levelsRowScalar(const float* in, float* out, std::size_t count, const FloatLevels& levels);

}  // namespace vorto::effects
