// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorSpace.h"
#include "Host/ImageFiles/FileFormat.h"

#include <optional>

namespace host {

struct OutputTag {
  ColorTag tag;
  bool needsProfile = false;  // an ICC profile of the space is to be added
  bool isComplete = true;     // false when the format has no way to state the space
};

// How a file of a format states a space.
//
//   PNG                   sRGB: sRGB, gAMA and cHRM; else cICP where there are code points, and a profile, for readers
//                         that know one of them only
//   JPEG, TIFF, WebP ...  a profile; sRGB needs none
//   EXR                   chromaticities, and colorInteropID where the space has such a name
//   others                nothing
OutputTag tagOfSpace(const ColorSpace& space, FileFormat format);

// What of an input's tags states the input's own space in a file of the format too: the same profile, the same numbers.
// Nothing where they do not.
std::optional<ColorTag> keptTag(const ColorTag& tag, const ColorSpace& space, FileFormat format);

}  // namespace host
