// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/PictureTypes.h"

#include <cstddef>
#include <cstdint>

class VortoBitmap;

namespace host {

// Rows of pixels with red, green, blue and alpha of one type.

// Multiplies straight colors with their alpha, in place. Colors stay as they are where alpha is full and become 0 where
// it is 0; integers are rounded to the nearest.
template <class Sample>
void premultiplyRow(Sample* samples, std::size_t pixels);

// The inverse: premultiplied colors that came from straight ones and back again are the same. Where alpha is 0 colors
// become 0, and a color above its alpha becomes full; floats are not limited.
template <class Sample>
void unpremultiplyRow(Sample* samples, std::size_t pixels);

template <class Sample>
bool isOpaqueRow(const Sample* samples, std::size_t pixels);
template <class Sample>
bool isGrayRow(const Sample* samples, std::size_t pixels);

// Whole pictures in RGBA8, RGBA16 or RGBAFloat.
void premultiply(VortoBitmap& bitmap);
bool isOpaque(const VortoBitmap& bitmap);  // ARGB8 too
bool isGray(const VortoBitmap& bitmap);    // ARGB8 too: red, green and blue are equal everywhere, of floats nearly

}  // namespace host
