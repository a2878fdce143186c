// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

#include <memory>
#include <string>

class VortoBitmap;

namespace host {

using BitmapRef = std::shared_ptr<const VortoBitmap>;

// The most bytes of pixels in a bitmap: its size is a 32-bit number, and memory is reserved with some slack.
inline constexpr std::uint64_t kLargestBitmapBytes = 0xFFFFFFFFu - 65536u;

// A new bitmap, zero. `what` names the picture in the Failure that is thrown when it is more than a bitmap can hold, or
// memory ran out.
std::shared_ptr<VortoBitmap> newBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t formatCode,
                                       const std::string& what);

// The layout of a picture's samples in what flows between patches: RGBA8, RGBA16 or RGBAFloat.
std::uint32_t formatCodeOf(SampleType sample);

// What flows between patches: premultiplied RGBA.
BitmapRef makeBitmap(ImagePixels image, const std::string& what);

// The other way, for any bitmap that an effect may give (ARGB8 too).
ImagePixels pixelsOfBitmap(const VortoBitmap& bitmap, const std::string& what);

// Another size by nearest neighbour, as VortoBitmap::copyWithScaling has it.
BitmapRef scaledBitmap(const BitmapRef& bitmap, std::uint32_t width, std::uint32_t height);

// What becomes of alpha in a picture that is written: it stays, becomes full, or stays and is copied into the colors.
enum class OutputAlpha { Keep, Opaque, Gray };
BitmapRef outputConverted(const BitmapRef& bitmap, OutputAlpha alpha);

}  // namespace host
