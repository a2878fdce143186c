// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"

#include <cstddef>
#include <optional>
#include <span>

// zlib streams that are in memory as a whole.
namespace host {

// What it holds; empty when it is damaged or holds more than `largest` bytes.
Bytes inflated(std::span<const std::uint8_t> stream, std::size_t largest);

enum class Inflated { Whole, TooMuch, Damaged };

// Inflates a stream that holds exactly as many bytes as there is room for; TooMuch where it holds more. What is in the
// room counts only for Whole.
Inflated inflateInto(std::span<const std::uint8_t> stream, std::span<std::uint8_t> room);

// Inflates a stream that holds no more bytes than there is room for; how many it holds. Nothing when it is damaged or
// holds more.
std::optional<std::size_t> inflateUpTo(std::span<const std::uint8_t> stream, std::span<std::uint8_t> room);

// At a level from 1, quick, to 12, small.
Bytes deflated(std::span<const std::uint8_t> bytes, int level = 6);

}  // namespace host
