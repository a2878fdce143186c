// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/PixelLayout.h"

#include <cstddef>
#include <cstdint>

// Value noise: points of a square lattice have values of their own, between which pixels lie (Between.h). Everything
// here gives the same bits on every processor.
namespace vorto::effects {

// Another number for each number, such that neighbors have nothing in common.
std::uint32_t scrambled(std::uint32_t n);

// The values of `count` points of a lattice's row, from the column 0 on: multiples of 2 to the -24 from 0 to below 1,
// each as often as the others. Another key is another lattice.
void latticeRow(std::uint32_t key, std::uint32_t row, float* out, std::size_t count);

// `count` opaque pixels of RGBA8, RGBA16 or RGBAFloat, of components from 0; those above 1 are 1, but for floats.
// Integers round to the nearest.
template <class Layout>
void opaqueRow(const float* red, const float* green, const float* blue, typename Layout::Channel* out,
               std::size_t count);

// The definitions.
void latticeRowScalar(std::uint32_t key, std::uint32_t row, float* out, std::size_t first, std::size_t count);
template <class Layout>
void opaqueRowScalar(const float* red, const float* green, const float* blue, typename Layout::Channel* out,
                     std::size_t count);

// scrambled() is: n ^ (n >> 16), times the first, n ^ (n >> 15), times the second, n ^ (n >> 16).
inline constexpr std::uint32_t kScrambleFirst = 0x6A09E667;   // the fraction of the root of 2
inline constexpr std::uint32_t kScrambleSecond = 0xBB67AE85;  // of the root of 3
inline constexpr std::uint32_t kColumnStep = 0x9E3779B1;      // of the golden ratio, made a prime

}  // namespace vorto::effects
