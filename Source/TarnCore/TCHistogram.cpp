// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCHistogram.h"

#include "TarnCore/kernels/Histogram.h"

#include <algorithm>
#include <limits>

namespace {

using vorto::kernels::HistogramDepth;
using vorto::kernels::HistogramRows;
using vorto::kernels::HistogramTables;

bool depthOf(std::uint32_t bits, HistogramDepth& depth) {
  switch (bits) {
    case 8:
      depth = HistogramDepth::Bytes;
      return true;
    case 16:
      depth = HistogramDepth::Words;
      return true;
    case 32:
      depth = HistogramDepth::Floats;
      return true;
    default:
      return false;
  }
}

// Whether all rows lie within what an address can reach and all counts within 32 bits.
bool isCountable(const TCHistogramImage& image, std::size_t pixelBytes) {
  constexpr std::size_t mostPixels = std::numeric_limits<std::uint32_t>::max() / 3;
  constexpr std::size_t mostBytes = std::numeric_limits<std::ptrdiff_t>::max();
  if (!image.baseAddress || image.pixelsWide == 0 || image.pixelsHigh == 0) return false;
  if (image.pixelsWide > mostPixels / image.pixelsHigh) return false;
  if (image.bytesPerRow < image.pixelsWide * pixelBytes) return false;
  const auto address = reinterpret_cast<std::uintptr_t>(image.baseAddress);
  return image.bytesPerRow <= std::min<std::size_t>(mostBytes, ~address) / image.pixelsHigh;
}

}  // namespace

bool TCCountHistogram(const TCHistogramImage& image, TCHistogram& histogram) {
  histogram = TCHistogram();
  HistogramRows rows;
  if (!depthOf(image.bitsPerChannel, rows.depth)) return false;
  if (!isCountable(image, image.bitsPerChannel / 2)) return false;
  rows.pixels = static_cast<const std::uint8_t*>(image.baseAddress);
  rows.width = image.pixelsWide;
  rows.height = image.pixelsHigh;
  rows.bytesPerRow = image.bytesPerRow;

  HistogramTables tables = {};
  vorto::kernels::countHistogram(tables, rows);
  const auto& red = tables.counts[image.isRedFirst ? 0 : 2];
  const auto& blue = tables.counts[image.isRedFirst ? 2 : 0];
  std::copy_n(red, TCHistogram::Bins, histogram.red);
  std::copy_n(tables.counts[1], TCHistogram::Bins, histogram.green);
  std::copy_n(blue, TCHistogram::Bins, histogram.blue);
  std::copy_n(tables.counts[3], TCHistogram::Bins, histogram.alpha);
  for (std::size_t i = 0; i < TCHistogram::Bins; ++i) {
    histogram.rgb[i] = histogram.red[i] + histogram.green[i] + histogram.blue[i];
  }
  return true;
}
