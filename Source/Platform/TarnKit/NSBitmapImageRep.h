// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <cstdint>
#include <vector>

// Pixels of an image: 8-bit red, green, blue, alpha in that order, colors premultiplied by alpha, first row on top.
// Owns its memory, zeroed when made.
class TARN_EXPORT NSBitmapImageRep {
 public:
  // A row pitch smaller than a row of pixels is widened to it. Sizes that cannot be allocated, or that no image can
  // have (an edge above 32767), give an empty bitmap of 0 x 0.
  NSBitmapImageRep(std::uint32_t pixelsWide, std::uint32_t pixelsHigh, std::uint32_t bytesPerRow);

  // pixelsHigh() * bytesPerRow() bytes; null for an empty bitmap.
  std::uint8_t* bitmapData() { return data_.empty() ? nullptr : data_.data(); }
  const std::uint8_t* bitmapData() const { return data_.empty() ? nullptr : data_.data(); }
  std::uint32_t pixelsWide() const { return pixelsWide_; }
  std::uint32_t pixelsHigh() const { return pixelsHigh_; }
  std::uint32_t bytesPerRow() const { return bytesPerRow_; }

 private:
  std::uint32_t pixelsWide_ = 0;
  std::uint32_t pixelsHigh_ = 0;
  std::uint32_t bytesPerRow_ = 0;
  std::vector<std::uint8_t> data_;
};
