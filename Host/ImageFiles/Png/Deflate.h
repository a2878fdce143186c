// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"

#include <cstddef>
#include <span>

// zlib streams that are in memory as a whole.
namespace host {

// What it holds; empty when it is damaged or holds more than `largest` bytes.
Bytes inflated(std::span<const std::uint8_t> stream, std::size_t largest);

// Whether a stream holds exactly as many bytes as there is room for. It may lie in any part of the room that does not
// overlap it.
bool inflateInto(std::span<const std::uint8_t> stream, std::span<std::uint8_t> room);

// At a level from 1, quick, to 12, small.
Bytes deflated(std::span<const std::uint8_t> bytes, int level = 6);

}  // namespace host
