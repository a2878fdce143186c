// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

// Between 8-bit YCbCr 4:2:2 (U, Y0, V, Y1) and 8-bit ARGB: four bytes and eight bytes a pair of pixels. Video range
// after BT.601 with eight bits of fraction, in integers; shifts are arithmetic.
//
// The memories may lie at any address. They may overlap: pairs follow one another from the first on. `streamed` writes
// past the caches where that is possible.
namespace vorto::kernels {

//   y = Y - 16, u = U - 128, v = V - 128
//   R = (298 y + 409 v) >> 8, G = (298 y - 100 u - 208 v) >> 8, B = (298 y + 516 u) >> 8, clamped to bytes; A = 255
void convertYUVtoARGB(std::uint8_t* argb, const std::uint8_t* yuv, std::size_t pairs, bool streamed = false);

//   Y = ((66 R + 129 G + 25 B) >> 8) + 16 of each pixel; of the means m = (first + second) >> 1 of the pair:
//   U = ((-38 mR - 74 mG + 112 mB) >> 8) + 128, V = ((112 mR - 94 mG - 18 mB) >> 8) + 128
void convertARGBtoYUV(std::uint8_t* yuv, const std::uint8_t* argb, std::size_t pairs, bool streamed = false);

// Converts `count` single pixels of a row from column `first` on, which lies at `yuv` (its chroma byte, then Y), into
// ARGB pixels `step` bytes apart. Chroma lags: an even column takes its own U but the V of the column before it, an odd
// one its own V but the U before it. The first column takes its missing byte from its own pair. Every byte of that pair
// must be readable, also the one before an odd `first`.
void convertLaggingYUVtoARGB(std::uint8_t* argb, std::size_t step, const std::uint8_t* yuv, bool firstIsOdd,
                             std::size_t count, bool streamed = false);

// The definitions.
void convertYUVtoARGBScalar(std::uint8_t* argb, const std::uint8_t* yuv, std::size_t pairs);
void convertARGBtoYUVScalar(std::uint8_t* yuv, const std::uint8_t* argb, std::size_t pairs);
void convertLaggingYUVtoARGBScalar(std::uint8_t* argb, std::size_t step, const std::uint8_t* yuv, bool firstIsOdd,
                                   std::size_t count);

}  // namespace vorto::kernels
