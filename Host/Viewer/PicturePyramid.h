// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Pixels/Bitmaps.h"
#include "Host/Pixels/Resampling.h"

#include <atomic>
#include <utility>
#include <vector>

namespace host {

// Thrown where nobody waits for the result any more.
struct DisplayEnded {};
inline void checkNotEnded(const std::atomic<bool>* ends) {
  if (ends && ends->load(std::memory_order_relaxed)) throw DisplayEnded();
}

// A picture and its halves, quarters, ... made when they are first wanted. Pixel (x, y) of level k is the mean of the
// pixels from (2^k x, 2^k y) on, 2^k in each direction or as many as there are; sides are rounded up. The bitmap is one
// that effects exchange. Levels of integers have 16 bits, whose rounding is below what 8 bits show; of floats floats.
class PicturePyramid {
 public:
  // Once `ends` is true, whoever sets it, level() throws DisplayEnded instead of going on.
  explicit PicturePyramid(BitmapRef bitmap, const std::atomic<bool>* ends = nullptr) : ends_(ends) {
    levels_.push_back(std::move(bitmap));
  }
  const std::atomic<bool>* ends() const { return ends_; }

  // Level 0 is the bitmap; a level beyond the last one, of one pixel, is the last. Throws Failure when memory runs out.
  const VortoBitmap& level(unsigned level);

  const BitmapRef& bitmap() const { return levels_.front(); }

 private:
  const std::atomic<bool>* ends_;
  std::vector<BitmapRef> levels_;
};

}  // namespace host
