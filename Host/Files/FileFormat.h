// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

#include <optional>
#include <string>

namespace host {

// By the extension, in any case: png; jpg, jpeg; tif, tiff; exr. Throws Failure for any other.
FileFormat fileFormatOf(const std::string& path);

// The depth in which a format stores pixels that were rendered at a depth:
//
//           8    16   half    float
//   PNG     8    16   16      16
//   JPEG    8    8    8       8
//   TIFF    8    16   float   float
//   EXR     half float half   float    (the smallest that holds every value exactly)
Depth storedDepth(FileFormat format, Depth depth);

// What pixels of a depth are held in.
SampleType sampleTypeOf(Depth depth);

// "8", "16", "half", "float"
std::optional<Depth> depthNamed(const std::string& name);

}  // namespace host
