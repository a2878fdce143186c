// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/kernels/Blend.h"

#include <cstdint>

namespace vorto::effects {

// The loops of a mode in the instruction set of the machine. Each returns how many pixels it made: whole vectors of
// them.
template <class Channel>
using BlendLoop = std::size_t (*)(const Channel* background, const Channel* foreground, Channel* out,
                                  std::size_t count);
struct BlendVectors {
  BlendLoop<std::uint8_t> rgba8;
  BlendLoop<std::uint8_t> argb8;
  BlendLoop<std::uint16_t> rgba16;
  BlendLoop<float> rgbaFloat;
};

BlendVectors blendVectors(PlainModes, std::size_t mode);
BlendVectors blendVectors(PolynomialModes, std::size_t mode);
BlendVectors blendVectors(QuotientModes, std::size_t mode);
BlendVectors blendVectors(NonSeparableModes, std::size_t mode);

}  // namespace vorto::effects
