// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

// Before bytes of samples are compressed they are sorted, the even ones before the odd ones, and each is replaced by
// its difference to the one before, plus 128.
namespace host::exr {

// In place.
void sumDifferences(std::uint8_t* bytes, std::size_t count);

// The even bytes of `count` samples of two bytes, which start at `even`, and the odd ones beside each other again.
void mergeBytes(const std::uint8_t* even, const std::uint8_t* odd, std::size_t count, std::uint16_t* samples);

// Sorts `count` samples of two bytes, then takes differences; `bytes` has room for 2 * count.
void sortAndSubtract(const std::uint16_t* samples, std::size_t count, std::uint8_t* bytes);

}  // namespace host::exr
