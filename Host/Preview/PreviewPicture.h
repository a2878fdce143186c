// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorSpace.h"
#include "Host/ImageFiles/ImageFileModule.h"
#include "Host/Pixels/Bitmaps.h"
#include "Host/Pixels/Resampling.h"

#include <cstdint>
#include <memory>

namespace host {

// A frame as people look at it: what an effect made of its first input, and that input. It never changes, and may be
// used on any thread; so may its bitmaps, which are RGBA8, RGBA16 or RGBAFloat (or ARGB8), premultiplied, in one space.
struct PreviewPicture {
  std::uint64_t frame = 0;  // of the plan
  BitmapRef result;         // null where there is none yet
  BitmapRef before;         // the first input; null of generators

  // What the bitmaps stand for. Quick ones are smaller than that.
  PictureSize size;        // of the full result
  PictureSize beforeSize;  // of the full input
  bool isFull = true;      // result and before have those sizes
  Depth depth = Depth::Bits8;
  ColorSpace space;  // of the samples of both

  // The first input as its file has it, straight alpha and unconverted, where `before` is something else; else null.
  BitmapRef fileBefore;
  std::shared_ptr<const PictureInfo> fileInfo;  // null of generators
};
using PreviewPictureRef = std::shared_ptr<const PreviewPicture>;

}  // namespace host
