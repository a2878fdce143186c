// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramGraph.h"

#include "Platform/TarnKit/NSBitmapImageRep.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace {

constexpr std::uint8_t kBar[4] = {25, 29, 38, 255};
constexpr std::uint8_t kGround[4] = {181, 187, 200, 255};
constexpr double kCountOfFullHeightWhenEmpty = 255;

double biasedFloor(double value) {
  return std::floor(value + 0.5 + 1e-7);
}

// The largest count, compared as signed integers.
double largestCount(const TCHistogram::Counts& counts) {
  std::int32_t largest = 0;
  for (std::size_t bin = 0; bin < TCHistogram::Bins; ++bin) {
    largest = std::max(largest, static_cast<std::int32_t>(counts[bin]));
  }
  return largest == 0 ? kCountOfFullHeightWhenEmpty : largest;
}

// The share of the full height.
double share(double count, double largest, VRTHistogramScale scale) {
  return scale == VRTHistogramScale::Logarithmic ? std::log1p(count) / std::log1p(largest) : count / largest;
}

}  // namespace

const TCHistogram::Counts& VRTHistogramCountsOfChannel(const TCHistogram& histogram, std::int32_t channel) {
  switch (channel) {
    case 1:
      return histogram.red;
    case 2:
      return histogram.green;
    case 3:
      return histogram.blue;
    case 4:
      return histogram.alpha;
    default:
      return histogram.rgb;
  }
}

std::vector<double> VRTHistogramHeights(const TCHistogram::Counts& counts, std::uint32_t width, std::uint32_t height,
                                        VRTHistogramScale scale) {
  const double largest = largestCount(counts);
  std::vector<double> heights(width);
  for (std::uint32_t x = 0; x < width; ++x) {
    double whole = 0;
    const double fraction = std::modf(static_cast<double>(x) / width * TCHistogram::Bins, &whole);
    const auto bin = static_cast<std::size_t>(biasedFloor(whole));
    const double count = biasedFloor((1 - fraction) * counts[bin] + fraction * counts[bin + 1]);
    heights[x] = biasedFloor(share(count, largest, scale) * height);
  }
  return heights;
}

void VRTPaintHistogram(NSBitmapImageRep& bitmap, const TCHistogram::Counts& counts, VRTHistogramScale scale) {
  std::uint8_t* row = bitmap.bitmapData();
  if (!row) return;
  const std::uint32_t width = bitmap.pixelsWide();
  const std::uint32_t height = bitmap.pixelsHigh();
  const std::vector<double> heights = VRTHistogramHeights(counts, width, height, scale);
  for (std::uint32_t y = 0; y < height; ++y, row += bitmap.bytesPerRow()) {
    for (std::uint32_t x = 0; x < width; ++x) {
      std::memcpy(row + std::size_t{4} * x, heights[x] > height - y ? kBar : kGround, 4);
    }
  }
}

void VRTPaintGreyRamp(NSBitmapImageRep& bitmap) {
  std::uint8_t* const row = bitmap.bitmapData();
  if (!row) return;
  const std::uint32_t width = bitmap.pixelsWide();
  for (std::uint32_t x = 0; x < width; ++x) {
    const auto level = static_cast<std::uint8_t>(biasedFloor(static_cast<double>(x) / width * 255));
    const std::uint8_t pixel[4] = {level, level, level, 255};
    std::memcpy(row + std::size_t{4} * x, pixel, 4);
  }
  const std::size_t pitch = bitmap.bytesPerRow();
  for (std::uint32_t y = 1; y < bitmap.pixelsHigh(); ++y) std::memcpy(row + y * pitch, row, pitch);
}
