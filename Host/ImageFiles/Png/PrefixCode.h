// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <span>

namespace host {

// The bits of each symbol in the shortest prefix code whose codes have no more than `longest` bits (nearly the
// shortest, where that limit counts); 0 for symbols that do not occur. At least two must occur; no more than 288,
// 2^longest.
void findCodeLengths(std::span<const std::uint32_t> counts, unsigned longest, std::span<std::uint8_t> lengths);

// The codes of these lengths as deflate numbers them, their first bit the lowest.
void findCodes(std::span<const std::uint8_t> lengths, std::span<std::uint16_t> codes);

}  // namespace host
