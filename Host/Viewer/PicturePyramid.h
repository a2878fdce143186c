// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Pixels/Bitmaps.h"
#include "Host/Pixels/Resampling.h"

#include <utility>
#include <vector>

namespace host {

// A picture and its halves, quarters, ... made when they are first wanted. Pixel (x, y) of level k is the mean of the
// pixels from (2^k x, 2^k y) on, 2^k in each direction or as many as there are; sides are rounded up. The bitmap is one
// that effects exchange. Levels of integers have 16 bits, whose rounding is below what 8 bits show; of floats floats.
class PicturePyramid {
 public:
  explicit PicturePyramid(BitmapRef bitmap) { levels_.push_back(std::move(bitmap)); }

  // Level 0 is the bitmap; a level beyond the last one, of one pixel, is the last. Throws Failure when memory runs out.
  const VortoBitmap& level(unsigned level);

  const BitmapRef& bitmap() const { return levels_.front(); }

 private:
  std::vector<BitmapRef> levels_;
};

}  // namespace host
