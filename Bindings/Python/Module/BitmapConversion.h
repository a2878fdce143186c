// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bitmap.h"

namespace vorto::python {

// What VortoBitmap::copyWithScalingAndDepthConversion() reads and writes.
bool isReadyForDepth(std::uint32_t code);
bool isDepthTarget(std::uint32_t code);

// The picture in any of the nine layouts, in memory of its own. ValueError for YUV8 of an odd width.
MutableBitmapRef convertedPixels(const Bitmap& bitmap, std::uint32_t code);

}  // namespace vorto::python
