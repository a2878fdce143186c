// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/kernels/Memory.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

// Nearest-neighbour scaling of whole pixels, whatever is in them.
namespace vorto::kernels {

// A rectangle of consecutive pixels without padding, and how many of them may be touched.
struct ScaleSource {
  const std::uint8_t* pixels;
  std::uint32_t width;
  std::uint32_t height;
  std::size_t accessible;  // pixels
};

struct ScaleDestination {
  std::uint8_t* pixels;
  std::uint32_t width;
  std::uint32_t height;
  std::size_t accessible;
};

// The row or column that the destination's row or column `index` is taken from: floor(index x ratio + 1e-7) in double
// precision, clamped to 32 bits. `ratio` is the source's extent divided by the destination's.
std::uint32_t scaledIndex(std::uint32_t index, double ratio);

// For every destination pixel in turn, the source pixel at (scaled row x source width + scaled column). A pixel that
// lies beyond what may be touched, on either side, is skipped; one that is its own source stays.
void scaleNearest(const ScaleDestination& destination, const ScaleSource& source, std::size_t pixelBytes);
void scaleNearestScalar(const ScaleDestination& destination, const ScaleSource& source, std::size_t pixelBytes);

// Whether neither side is empty, every pixel that the rule names may be touched, and the images share no memory: the
// case for which the fast forms are made.
bool isOrdinaryScale(const ScaleDestination& destination, std::size_t destinationPixelBytes, const ScaleSource& source,
                     std::size_t sourcePixelBytes);

// Takes `count` pixels of `pixelBytes` from `row` at `columns`, which ascend. `rowPixels` pixels may be read there.
void gatherPixels(std::uint8_t* out, const std::uint8_t* row, std::size_t rowPixels, const std::uint32_t* columns,
                  std::size_t count, std::size_t pixelBytes);
// The same of RGBA8, which become ARGB8.
void gatherRGBA8ToARGB8(std::uint8_t* out, const std::uint8_t* row, std::size_t rowPixels, const std::uint32_t* columns,
                        std::size_t count);

// A destination row, or a part of one, and the source row and columns that it is taken from.
struct ScaledRow {
  std::uint8_t* out;
  const std::uint8_t* in;
  std::size_t inPixels;  // that may be read there
  const std::uint32_t* columns;
  std::uint32_t count;
};

// Calls make(row) for the rows of an ordinary scale; one that repeats the row before it is copied instead.
template <class Make>
void forEachScaledRow(const ScaleDestination& destination, std::size_t outBytes, const ScaleSource& source,
                      std::size_t inBytes, Make make) {
  constexpr std::uint32_t kBlock = 4096;  // columns of a table on the stack; one spans the usual image
  std::uint32_t columns[kBlock];
  const double columnRatio = static_cast<double>(source.width) / destination.width;
  const double rowRatio = static_cast<double>(source.height) / destination.height;
  const std::size_t outRowBytes = std::size_t{destination.width} * outBytes;
  const std::size_t pixels = std::size_t{source.width} * source.height;
  for (std::uint32_t first = 0; first < destination.width;) {
    const std::uint32_t count = std::min(kBlock, destination.width - first);
    for (std::uint32_t i = 0; i < count; ++i) columns[i] = scaledIndex(first + i, columnRatio);
    std::uint8_t* out = destination.pixels + first * outBytes;
    std::uint32_t previous = 0;
    for (std::uint32_t j = 0; j < destination.height; ++j, out += outRowBytes) {
      const std::uint32_t line = scaledIndex(j, rowRatio);
      const std::size_t start = std::size_t{line} * source.width;
      if (j > 0 && line == previous) {
        copyBytes(out, out - outRowBytes, count * outBytes, false);
      } else {
        make(ScaledRow{out, source.pixels + start * inBytes, pixels > start ? pixels - start : 0, columns, count});
      }
      previous = line;
    }
    first += count;
  }
}

}  // namespace vorto::kernels
