// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Pixels/Bitmaps.h"

#include <optional>
#include <string>

namespace host {

// A layout of bitmaps as the command line names it.
struct Layout {
  const char* name;
  std::uint32_t formatCode;
  Depth depth;              // of its channels
  const char* description;  // for --help
};

// "rgba8", "argb8", "yuv422", ... Nothing for an empty name; throws Failure, with the names that there are, for a
// wrong one.
std::optional<Layout> parsedLayout(const std::string& name);
std::string layoutList();  // a line for each, for --help

// The same picture in another depth, for bitmaps that effects exchange: RGBA8, RGBA16 or RGBAFloat. The bitmap itself
// where it has that depth.
MutableBitmapRef inDepth(const MutableBitmapRef& bitmap, SampleType sample, const std::string& what);
BitmapRef inDepth(const BitmapRef& bitmap, SampleType sample, const std::string& what);

// What is left of a picture that effects exchange once it has been held in a bitmap of the layout: as that layout,
// where effects exchange it, or in the nearest that they do (ARGB8 for yuv422, RGBA16 for the other 16-bit integers,
// RGBAFloat for halves).
//
// Layouts without alpha show the picture over black. Luminance is 0.299 red + 0.587 green + 0.114 blue. A 4:2:2 bitmap
// has pairs of columns: the last column of an odd number is there twice.
BitmapRef throughLayout(const BitmapRef& bitmap, const Layout& layout, const std::string& what);

}  // namespace host
