// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/GaussianBlurPasses.h"
#include "Effects/Support/PixelLayout.h"

#include <algorithm>
#include <cstring>

namespace vorto::effects {
namespace {

// First along the rows, some of them at a time, then along the columns, in strips that are a line of the caches wide in
// an 8-bit image. Between the two lie floats, a strip after the other.
constexpr std::size_t kRowsAbreast = 8;
constexpr std::size_t kStripPixels = 16;
constexpr std::size_t kRowLanes = 4 * kRowsAbreast;
constexpr std::size_t kStripLanes = 4 * kStripPixels;
static_assert(kRowLanes % kGaussianLanes == 0 && kStripLanes % kGaussianLanes == 0);

// Memory for some steps of lines.
std::shared_ptr<VortoBitmap> makeLines(std::size_t steps, std::size_t lanes) {
  return makeBitmap(lanes / 4, steps, VortoPixelFormat::RGBAFloat, nullptr);
}

// Pixels of filtered rows to their places in the strips; behind the last one zeros.
void distribute(const float* rows, std::size_t rowCount, const VortoBitmap& in, float* strips, std::size_t y) {
  float* strip = strips + y * kStripLanes;
  for (std::size_t x = 0; x < in.width; x += kStripPixels, strip += in.height * kStripLanes) {
    const std::size_t pixels = std::min<std::size_t>(kStripPixels, in.width - x);
    for (std::size_t row = 0; row < rowCount; ++row) {
      const float* pixel = rows + x * kRowLanes + 4 * row;
      float* place = strip + row * kStripLanes;
      for (std::size_t i = 0; i < pixels; ++i, pixel += kRowLanes, place += 4) {
        std::memcpy(place, pixel, 4 * sizeof(float));
      }
      std::fill_n(place, 4 * (kStripPixels - pixels), 0.0F);
    }
  }
}

template <class Channel>
void filterRows(const VortoBitmap& in, const GaussianFilter& filter, GaussianEdges edges, float* loaded,
                float* filtered, float* strips) {
  const Channel* rows[kRowsAbreast];
  std::fill_n(loaded, in.width * kRowLanes, 0.0F);  // rows beyond the last one stay
  for (std::size_t y = 0; y < in.height; y += kRowsAbreast) {
    const std::size_t rowCount = std::min<std::size_t>(kRowsAbreast, in.height - y);
    for (std::size_t row = 0; row < rowCount; ++row) rows[row] = rowOf<Channel>(in, y + row);
    gaussianLoad(rows, rowCount, in.width, loaded, kRowLanes);
    gaussianLines(filter, loaded, filtered, in.width, kRowLanes, edges);
    distribute(filtered, rowCount, in, strips, y);
  }
}

void filterColumns(const VortoBitmap& in, const GaussianFilter& filter, GaussianEdges edges, const float* strips,
                   float* filtered, const TakeBlurred& take) {
  for (std::size_t x = 0; x < in.width; x += kStripPixels, strips += in.height * kStripLanes) {
    gaussianLines(filter, strips, filtered, in.height, kStripLanes, edges);
    take({filtered, kStripLanes, x, 0, std::min<std::size_t>(kStripPixels, in.width - x), in.height});
  }
}

}  // namespace

bool blurByRecursion(const VortoBitmap& in, const GaussianFilter& filter, GaussianEdges edges, const TakeBlurred& take,
                     std::string* reason) {
  const std::size_t stripCount = (std::size_t{in.width} + kStripPixels - 1) / kStripPixels;
  const auto loaded = makeLines(in.width, kRowLanes);
  const auto filteredRows = makeLines(in.width, kRowLanes);
  const auto strips = makeLines(in.height, stripCount * kStripLanes);
  const auto filteredColumns = makeLines(in.height, kStripLanes);
  if (!loaded || !filteredRows || !strips || !filteredColumns) {
    if (reason) *reason = "no memory for a blur of " + describeBitmap(in) + ", which takes 16 bytes a pixel";
    return false;
  }
  withLayout(in.formatCode, [&](auto layout) {
    filterRows<typename decltype(layout)::Channel>(in, filter, edges, rowOf<float>(*loaded, 0),
                                                   rowOf<float>(*filteredRows, 0), rowOf<float>(*strips, 0));
  });
  filterColumns(in, filter, edges, rowOf<float>(*strips, 0), rowOf<float>(*filteredColumns, 0), take);
  return true;
}

}  // namespace vorto::effects
