// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Pixels/Bitmaps.h"

#include <cstdint>

// Frames as hosts have them: RGBA at 8 bits, straight alpha, first row on top, no padding.
namespace frei0r {

// A bitmap of the host's own memory where that is opaque, which spares copying it, else a premultiplied copy. Throws
// Failure when memory runs out.
//
// Give it back by releaseFrame() before the host may change the frame: from then on it is a bitmap without pixels, for
// whoever kept it.
host::MutableBitmapRef bitmapOfFrame(const std::uint32_t* frame, std::uint32_t width, std::uint32_t height);
void releaseFrame(VortoBitmap& bitmap, const std::uint32_t* frame);

// A copy in any case, which stays good.
host::MutableBitmapRef copyOfFrame(const std::uint32_t* frame, std::uint32_t width, std::uint32_t height);

// A result of the frame's size, in RGBA8, ARGB8, RGBA16 or RGBAFloat.
void writeFrame(const VortoBitmap& result, std::uint32_t* frame);

}  // namespace frei0r
