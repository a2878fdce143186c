// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/PictureTypes.h"
#include "Host/ImageFiles/Tiff/TiffFile.h"

#include <cstddef>
#include <cstdint>

namespace host::tiff {

enum class Stored { UInt8, UInt16, Half, Float };

inline std::size_t sizeOf(Stored stored) {
  return stored == Stored::UInt8 ? 1 : stored == Stored::Float ? 4 : 2;
}

// How a file's first picture is stored, of the kinds that are read here.
struct Kind {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  Stored stored = Stored::UInt8;
  Channels channels = Channels::RGB;
  AlphaKind alpha = AlphaKind::None;
  bool isPlanar = false;  // sample by sample, not pixel by pixel
  bool isTiled = false;
  std::uint32_t tileWidth = 0, tileHeight = 0;
};

// False for a picture of another kind: of other samples or colors, with more channels, or compressed in a rarer way.
bool findKind(const TiffFile& file, Kind* kind);

}  // namespace host::tiff
