// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/HalfFloat.h"

#include <gtest/gtest.h>
#include <half.h>

#include <bit>
#include <vector>

// Every half, in rows of a length that leaves some over for each of the ways in which they are converted.
TEST(HalfFloat, IsAsTheLibraryOfTheType) {
  constexpr std::size_t kRow = 1021;
  for (std::size_t first = 0; first < 1 << 16; first += kRow) {
    std::vector<std::uint16_t> halves(kRow);
    for (std::size_t i = 0; i < kRow; ++i) halves[i] = static_cast<std::uint16_t>(first + i);
    std::vector<float> floats(kRow);
    host::halvesToFloats(halves.data(), kRow, floats.data());
    for (std::size_t i = 0; i < kRow; ++i) {
      ASSERT_EQ(std::bit_cast<std::uint32_t>(floats[i]), std::bit_cast<std::uint32_t>(imath_half_to_float(halves[i])))
          << halves[i];
    }
  }
  std::vector<float> floats(kRow);
  std::vector<std::uint16_t> halves(kRow);
  for (std::uint64_t first = 0; first < std::uint64_t{1} << 32; first += kRow * 1997) {
    for (std::size_t i = 0; i < kRow; ++i)
      floats[i] = std::bit_cast<float>(static_cast<std::uint32_t>(first + i * 1997));
    host::floatsToHalves(floats.data(), kRow, halves.data());
    for (std::size_t i = 0; i < kRow; ++i) {
      ASSERT_EQ(halves[i], imath_float_to_half(floats[i])) << std::bit_cast<std::uint32_t>(floats[i]);
    }
  }
}
