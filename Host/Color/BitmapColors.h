// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorConversion.h"
#include "Host/Pixels/Bitmaps.h"

#include <string>

namespace host {

// A bitmap that flows between patches (RGBA8, RGBA16, RGBAFloat) in another space: RGBAFloat, premultiplied. `alpha` is
// the bitmap's own. Throws Failure when memory runs out.
MutableBitmapRef convertedBitmap(ColorConversion& conversion, const VortoBitmap& bitmap, AlphaKind alpha,
                                 const std::string& what);

}  // namespace host
