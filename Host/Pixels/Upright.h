// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Pixels/Bitmaps.h"

namespace host {

// The picture upright that was stored with an orientation tag of TIFF or Exif, 1 to 8; other tags count as 1. Of any
// layout with whole pixels.
MutableBitmapRef upright(const MutableBitmapRef& stored, int orientation, const std::string& what);

}  // namespace host
