// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Png/BitWriter.h"

#include <cstdint>
#include <span>

namespace host {

// Bytes that stand as they are, then some that stood before: `length` of them from `distance` bytes back.
struct DeflateStep {
  std::uint32_t literals = 0;
  std::uint16_t length = 0;  // 3 to 258; 0: none, at the end
  std::uint16_t distance = 0;
};

inline constexpr std::size_t kLargestDeflateBlock = 65535;

// Writes a block of deflate's format; the steps make up its bytes. Where codes would take more it is stored as it is.
void writeDeflateBlock(std::span<const std::uint8_t> bytes, std::span<const DeflateStep> steps, bool isLast,
                       BitWriter* out);
void writeStoredBlock(std::span<const std::uint8_t> bytes, bool isLast, BitWriter* out);

}  // namespace host
