// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorConversion.h"
#include "Host/Pixels/Bitmaps.h"

#include <string>

namespace host {

// A bitmap that flows between patches (ARGB8 too) in another space: RGBA8, RGBA16 or RGBAFloat, premultiplied. `alpha`
// is the bitmap's own. *cut, which may be null, grows by the pixels that were cut. Throws Failure when memory runs out.
MutableBitmapRef convertedBitmap(ColorConversion& conversion, const VortoBitmap& bitmap, AlphaKind alpha,
                                 SampleType sample, const std::string& what, std::uint64_t* cut);

}  // namespace host
