// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

namespace host {

// Turns a picture upright that was stored with an orientation tag of TIFF or Exif, 1 to 8; other tags count as 1.
void makeUpright(ImagePixels* image, int orientation);

}  // namespace host
