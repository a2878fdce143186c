// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"
#include "Platform/Visibility.h"

#include <cstdint>
#include <optional>
#include <string>

// Where a theme's pictures come from. A theme atom is a 32-bit value that names a family of pictures, an index one
// picture of it.

// How much of each side of a nine-part picture keeps its size when the picture is stretched, in points of the artwork.
struct TarnThemeSlices {
  double left = 0;
  double right = 0;
  double top = 0;
  double bottom = 0;
};

// One picture of a theme.
struct TarnThemeArtwork {
  std::string file;  // path of the SVG file
  NSSize size;       // in points
  TarnThemeSlices slices;
  NSPoint hotSpot;  // of a cursor, from its upper left corner
};

// Knows which artwork stands for an atom. Asked on the main thread, once per picture and set.
class TARN_EXPORT TarnThemeProvider {
 public:
  virtual ~TarnThemeProvider();
  // Empty when the provider has no such picture.
  virtual std::optional<TarnThemeArtwork> artworkForAtom(std::uint32_t atom, int index, bool dark) const = 0;
};
