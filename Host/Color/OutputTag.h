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

// How a file of a format states a space. `isGray` is whether the file is gray, or has colors; nothing where the result
// may be either. Profiles of spaces are for files of colors.
//
//   PNG                   sRGB: sRGB, gAMA and cHRM; else cICP where there are code points, and a profile, for readers
//                         that know one of them only
//   JPEG, TIFF            a profile; sRGB needs none
//   EXR                   chromaticities, and colorInteropID where the space has such a name
//   clips                 code points
//   others                nothing
OutputTag tagOfSpace(const ColorSpace& space, FileFormat format, std::optional<bool> isGray);

// What of an input's tags states the input's own space in a file of the format too: the same profile, the same numbers.
// Nothing where they do not.
std::optional<ColorTag> keptTag(const ColorTag& stated, const ColorSpace& space, FileFormat format,
                                std::optional<bool> isGray);

// Takes a profile out that a file cannot have: one for the other model, or for none of both. With one that was whole
// goes what it stood above, code points stay. False where there was nothing to take.
bool dropForeignProfile(ColorTag* tag, std::optional<bool> isGray);

}  // namespace host
