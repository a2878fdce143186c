// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/GaussianBlur.h"

#include "Effects/Support/PixelLayout.h"

#include <algorithm>
#include <cstring>

namespace vorto::effects {
namespace {

// First along the rows, some of them at a time, then along the columns, in strips that are a line of the caches wide in
// an 8-bit image. Between the two lie floats, a strip after the other, each with room for the edges above and below.
constexpr std::size_t kRowsAbreast = 8;
constexpr std::size_t kStripPixels = 16;
constexpr std::size_t kRowLanes = 4 * kRowsAbreast;
constexpr std::size_t kStripLanes = 4 * kStripPixels;
static_assert(kRowLanes % kGaussianLanes == 0 && kStripLanes % kGaussianLanes == 0);

// Floats for some steps of lines, with the radius of a filter around them.
struct Lines {
  std::shared_ptr<VortoBitmap> memory;
  std::size_t lanes;
  std::size_t steps;   // with the room around them
  std::size_t radius;  // of that room, on each side

  static Lines make(std::size_t steps, std::size_t lanes, std::size_t radius, std::size_t strips, std::string* reason) {
    const std::size_t all = steps + 2 * radius;
    return {makeBitmap(strips * lanes / 4, all, VortoPixelFormat::RGBAFloat, reason), lanes, all, radius};
  }

  float* all(std::size_t strip) const { return rowOf<float>(*memory, 0) + strip * steps * lanes; }
  float* values(std::size_t strip = 0) const { return all(strip) + radius * lanes; }

  void fillEdges(std::size_t strip, GaussianEdges edges) const {
    float* const first = values(strip);
    float* const end = all(strip) + (steps - radius) * lanes;
    for (std::size_t i = 0; i < radius; ++i) {
      if (edges == GaussianEdges::Transparent) {
        std::fill_n(all(strip) + i * lanes, lanes, 0.0F);
        std::fill_n(end + i * lanes, lanes, 0.0F);
      } else {
        std::copy_n(first, lanes, all(strip) + i * lanes);
        std::copy_n(end - lanes, lanes, end + i * lanes);
      }
    }
  }
};

// Pixels of filtered rows to their places in the strips; behind the last one zeros.
void distribute(const float* rows, std::size_t rowCount, std::size_t width, const Lines& strips, std::size_t y) {
  float* strip = strips.values() + y * kStripLanes;
  for (std::size_t x = 0; x < width; x += kStripPixels, strip += strips.steps * kStripLanes) {
    const std::size_t pixels = std::min(kStripPixels, width - x);
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
void filterRows(const VortoBitmap& in, const GaussianFilter& filter, GaussianEdges edges, const Lines& loaded,
                const Lines& filtered, const Lines& strips) {
  const Channel* rows[kRowsAbreast];
  std::fill_n(loaded.values(), in.width * kRowLanes, 0.0F);  // rows beyond the last one stay
  for (std::size_t y = 0; y < in.height; y += kRowsAbreast) {
    const std::size_t rowCount = std::min<std::size_t>(kRowsAbreast, in.height - y);
    for (std::size_t row = 0; row < rowCount; ++row) rows[row] = rowOf<Channel>(in, y + row);
    gaussianLoad(rows, rowCount, in.width, loaded.values(), kRowLanes);
    loaded.fillEdges(0, edges);
    gaussianLines(filter, loaded.values(), filtered.values(), in.width, kRowLanes, edges);
    distribute(filtered.values(), rowCount, in.width, strips, y);
  }
}

template <class Layout>
void filterColumns(VortoBitmap& out, const GaussianFilter& filter, GaussianEdges edges, const Lines& filtered,
                   const Lines& strips) {
  for (std::size_t x = 0; x < out.width; x += kStripPixels) {
    const std::size_t strip = x / kStripPixels;
    strips.fillEdges(strip, edges);
    gaussianLines(filter, strips.values(strip), filtered.values(), out.height, kStripLanes, edges);
    gaussianStore<Layout>(filtered.values(), kStripLanes, out.height,
                          std::min<std::size_t>(kStripPixels, out.width - x),
                          rowOf<typename Layout::Channel>(out, 0) + 4 * x, rowBytes(out));
  }
}

}  // namespace

bool isNoBlur(double sigma) {
  if (!(sigma > 0)) return true;
  return sigma < 1 && gaussianFilter(sigma).radius() == 0;
}

bool gaussianBlur(const VortoBitmap& in, VortoBitmap& out, double sigma, GaussianEdges edges, std::string* reason) {
  const GaussianFilter filter = gaussianFilter(std::min(sigma, kLargestSigma));
  const std::size_t radius = filter.radius();
  const std::size_t stripCount = (std::size_t{in.width} + kStripPixels - 1) / kStripPixels;
  const Lines loaded = Lines::make(in.width, kRowLanes, radius, 1, reason);
  const Lines filteredRows = Lines::make(in.width, kRowLanes, 0, 1, reason);
  const Lines strips = Lines::make(in.height, kStripLanes, radius, stripCount, reason);
  const Lines filteredColumns = Lines::make(in.height, kStripLanes, 0, 1, reason);
  for (const Lines* lines : {&loaded, &filteredRows, &strips, &filteredColumns}) {
    if (!lines->memory) return false;
  }
  withLayout(in.formatCode, [&](auto layout) {
    filterRows<typename decltype(layout)::Channel>(in, filter, edges, loaded, filteredRows, strips);
  });
  withLayout(out.formatCode,
             [&](auto layout) { filterColumns<decltype(layout)>(out, filter, edges, filteredColumns, strips); });
  return true;
}

}  // namespace vorto::effects
