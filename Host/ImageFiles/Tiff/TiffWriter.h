// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

#include <cstdint>
#include <limits>
#include <string>

namespace host::tiff {

// What a file may take: when it could be larger than 32-bit places reach, it is written with 64-bit ones.
struct Reach {
  std::uint64_t farthest = std::numeric_limits<std::uint32_t>::max();
  std::uint64_t margin = 1 << 26;  // for all that is no pixels
};

bool writeTiff(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason,
               const Reach& reach = {});

}  // namespace host::tiff
