// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/PictureTypes.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

class VortoBitmap;

namespace host {

using BitmapRef = std::shared_ptr<const VortoBitmap>;
using MutableBitmapRef = std::shared_ptr<VortoBitmap>;

// The most bytes of pixels in a bitmap: its size is a 32-bit number, and memory is reserved with some slack.
inline constexpr std::uint64_t kLargestBitmapBytes = 0xFFFFFFFFu - 65536u;

// Whether pixels of that many bytes make a bitmap.
bool fitsBitmap(std::uint32_t width, std::uint32_t height, std::size_t pixelBytes);

// A new bitmap, zero. `what` names the picture in the Failure that is thrown when it is more than a bitmap can hold, or
// memory ran out.
MutableBitmapRef newBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t formatCode,
                           const std::string& what);
// The same for who writes every pixel next: they hold anything.
MutableBitmapRef newUnsetBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t formatCode,
                                const std::string& what);

// The layout of a picture's samples in what flows between patches: RGBA8, RGBA16 or RGBAFloat.
std::uint32_t formatCodeOf(SampleType sample);

// The samples of a bitmap that an effect may give (ARGB8 too). Throws Failure for another layout, and for a bitmap
// without pixels.
SampleType sampleTypeOfResult(const VortoBitmap& bitmap, const std::string& what);

std::size_t bytesPerRow(const VortoBitmap& bitmap);  // of a layout that flows between patches

// What becomes of alpha in a picture that is written: it stays, becomes full, or stays and is copied into the colors.
enum class OutputAlpha { Keep, Opaque, Gray };
BitmapRef outputConverted(const BitmapRef& bitmap, OutputAlpha alpha);

}  // namespace host
