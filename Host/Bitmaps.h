#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

#include <memory>
#include <string>

class VortoBitmap;

namespace host {

using BitmapRef = std::shared_ptr<const VortoBitmap>;

// The most bytes of pixels in a bitmap: its size is a 32-bit number, and memory is reserved with some slack.
inline constexpr std::uint64_t LargestBitmapBytes = 0xFFFFFFFFu - 65536u;

// What flows between patches: premultiplied RGBA, in RGBA8, RGBA16 or RGBA float. `what` names the picture in the
// Failure that is thrown when it is too large for a bitmap, or memory ran out.
BitmapRef makeBitmap(ImagePixels image, SampleType sample, const std::string& what);

// The other way, for any bitmap that an effect may answer with (ARGB8 too).
ImagePixels pixelsOfBitmap(const VortoBitmap& bitmap, const std::string& what);

// Another size by nearest neighbour: column i takes column floor(i x old width / new width + 1e-7), rows alike.
BitmapRef scaledBitmap(const BitmapRef& bitmap, std::uint32_t width, std::uint32_t height);

}  // namespace host
