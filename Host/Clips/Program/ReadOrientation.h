// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/Program/AvObjects.h"

#include <cstddef>

namespace host {

// How a stream's frames are stored, as Exif numbers it, 1 to 8; 1 for those that are to be turned by other angles.
int orientationOf(const AVStream& stream);

inline bool rowsBecomeColumns(int orientation) {
  return orientation >= 5;
}

// Packed pixels as they are stored become upright ones; the sizes are of what is stored.
void putUpright(const std::byte* stored, std::size_t width, std::size_t height, std::size_t pixelBytes, int orientation,
                std::byte* upright);

}  // namespace host
