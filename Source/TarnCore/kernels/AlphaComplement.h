// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

namespace vorto::kernels {

// Replaces the alpha a of `count` pixels (red, green, blue, alpha) by 1 - a, computed in single precision; a half is
// widened for it and narrowed again, to the nearest half. The pixels may lie at any address.
void complementAlphaHalf(std::uint8_t* pixels, std::size_t count);
void complementAlphaFloat(std::uint8_t* pixels, std::size_t count);

// The definitions.
void complementAlphaHalfScalar(std::uint8_t* pixels, std::size_t count);
void complementAlphaFloatScalar(std::uint8_t* pixels, std::size_t count);

}  // namespace vorto::kernels
