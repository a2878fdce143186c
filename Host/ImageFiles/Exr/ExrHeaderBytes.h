// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ByteWriter.h"
#include "Host/ImageFiles/Exr/ExrPart.h"
#include "Host/ImageFiles/FileMetadata.h"

#include <cstdint>
#include <string>
#include <vector>

namespace host::exr {

// What the header of a file with one part has to say.
struct HeaderValues {
  std::uint8_t compression = kZip;
  const std::vector<Channel>* channels = nullptr;
  Box data;
  Box display;
  float pixelAspect = 1;
  bool isOneTile = false;  // the pixels are one tile, not rows
};

// The bytes of a file up to its table of offsets; `attributes` are added, and must not have names that a header has
// anyway, except for the window of the screen.
Bytes headerBytes(const HeaderValues& values, std::vector<HeaderAttribute> attributes);

}  // namespace host::exr
