// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <cstddef>
#include <cstdint>

// How often each value occurs in an image with four channels, in 256 bins.
//
// A channel's bin is floor(x + 0.5 + 1e-7), the sum in double precision, with x in single precision: the value itself
// at 8 bits, value / 257 at 16 bits, value / 0.003921569 (value x 255) for floats. Negative results count in bin 0,
// results of 255 and more in bin 254: bin 255 stays empty. A float that is no number counts in bin 0.
struct TCHistogram {
  static constexpr std::size_t Bins = 256;
  // One bin more than are counted, always 0: the neighbour of the last one, for those who interpolate.
  using Counts = std::uint32_t[Bins + 1];

  Counts rgb = {};  // the sum of the three below: three counts for each pixel
  Counts red = {};
  Counts green = {};
  Counts blue = {};
  Counts alpha = {};
};

// An image in memory: rows of pixels of four channels, of one size each. Neither address nor pitch need be aligned.
struct TCHistogramImage {
  const void* baseAddress = nullptr;  // the first row
  std::size_t bytesPerRow = 0;
  std::size_t pixelsWide = 0;
  std::size_t pixelsHigh = 0;
  std::uint32_t bitsPerChannel = 0;  // 8 and 16: unsigned integers; 32: floats
  bool isRedFirst = true;            // red, green, blue, alpha; otherwise blue, green, red, alpha
};

// Replaces all counts by those of the image. Answers whether the image was counted; otherwise all counts are 0: another
// number of bits, no address, no pixels, a pitch smaller than a row, more pixels than counts of 32 bits can hold three
// times over, or more bytes than memory can have. Nothing outside the described rows is read.
TARN_EXPORT bool TCCountHistogram(const TCHistogramImage& image, TCHistogram& histogram);
