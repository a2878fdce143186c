// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/GaussianBlurPasses.h"
#include "Effects/Support/PixelLayout.h"

#include <algorithm>

namespace vorto::effects {
namespace {

// Down the image in tiles of columns, a block of rows at a time: rows are filtered as they come, and from a block of
// them, with those that its edges take, columns are. All of that stays in the caches.
constexpr std::size_t kTilePixels = 256;
constexpr std::size_t kBlockRows = 32;
constexpr std::size_t kRowLanes = 4 * kTilePixels + 32;  // no power of two, or rows would displace one another
static_assert(kTilePixels % kGaussianRowPixels == 0 && kRowLanes % kGaussianLanes == 0);

class Tiles {
 public:
  Tiles(const VortoBitmap& in, const GaussianFilter& filter, GaussianEdges edges, std::string* reason)
      : in_(in),
        filter_(filter),
        edges_(edges),
        radius_(filter.radius()),
        segmentMemory_(makeBitmap(kTilePixels + 2 * radius_, 1, VortoPixelFormat::RGBAFloat, reason)),
        rowMemory_(makeBitmap(kRowLanes / 4, kBlockRows + 2 * radius_, VortoPixelFormat::RGBAFloat, reason)),
        blockMemory_(makeBitmap(kRowLanes / 4, kBlockRows, VortoPixelFormat::RGBAFloat, reason)) {
    if (!isMade()) return;
    for (const auto& memory : {segmentMemory_, rowMemory_}) {
      std::fill_n(rowOf<float>(*memory, 0), std::size_t{memory->width} * memory->height * 4, 0.0F);
    }
  }

  bool isMade() const { return segmentMemory_ && rowMemory_ && blockMemory_; }

  template <class Layout>
  void blur(const TakeBlurred& take) {
    for (std::size_t x = 0; x < in_.width; x += kTilePixels) {
      const std::size_t pixels = std::min<std::size_t>(kTilePixels, in_.width - x);
      std::size_t known = 0;  // rows that the block before has left
      for (std::size_t y = 0; y < in_.height; y += kBlockRows) {
        const std::size_t count = std::min<std::size_t>(kBlockRows, in_.height - y);
        for (std::size_t i = known; i < count + 2 * radius_; ++i) makeRow<Layout>(x, pixels, y, i);
        gaussianLines(filter_, row(radius_), block(), count, kRowLanes, edges_);
        take({block(), kRowLanes, x, y, pixels, count});
        known = 2 * radius_;
        std::copy_n(row(kBlockRows), known * kRowLanes, row(0));
      }
    }
  }

 private:
  float* segment() const { return rowOf<float>(*segmentMemory_, 0); }
  float* row(std::size_t i) const { return rowOf<float>(*rowMemory_, 0) + i * kRowLanes; }
  float* block() const { return rowOf<float>(*blockMemory_, 0); }
  bool repeats() const { return edges_ == GaussianEdges::Repeat; }

  // Row i of the block that begins at y; the first of them lies above it by the radius.
  template <class Layout>
  void makeRow(std::size_t x, std::size_t pixels, std::size_t y, std::size_t i) {
    const bool isAbove = y + i < radius_;
    const std::size_t from = isAbove ? 0 : y + i - radius_;
    const bool isBelow = from >= in_.height;
    if ((isAbove || isBelow) && !repeats()) {
      std::fill_n(row(i), 4 * kTilePixels, 0.0F);
    } else if ((isAbove && i > 0) || isBelow) {
      std::copy_n(row(i - 1), 4 * kTilePixels, row(i));
    } else {
      loadSegment<Layout>(x, pixels, from);
      const std::size_t rounded = (pixels + kGaussianRowPixels - 1) / kGaussianRowPixels * kGaussianRowPixels;
      gaussianLines(filter_, segment() + 4 * radius_, row(i), rounded, 4, edges_);
    }
  }

  // A tile's part of a row, and the radius around it.
  template <class Layout>
  void loadSegment(std::size_t x, std::size_t pixels, std::size_t y) {
    const std::size_t first = x - std::min(x, radius_);
    const std::size_t end = std::min<std::size_t>(x + pixels + radius_, in_.width);
    const std::size_t before = radius_ - (x - first);
    const auto* const source = rowOf<typename Layout::Channel>(in_, y) + 4 * first;
    float* const loaded = segment() + 4 * before;
    gaussianLoad(&source, 1, end - first, loaded, 4);
    float* const loadedEnd = loaded + 4 * (end - first);
    fill(segment(), before, loaded);
    fill(loadedEnd, pixels + 2 * radius_ - before - (end - first), loadedEnd - 4);
  }

  // Pixels beyond an edge of the image.
  void fill(float* place, std::size_t pixels, const float* edge) {
    for (std::size_t i = 0; i < 4 * pixels; ++i) place[i] = repeats() ? edge[i % 4] : 0.0F;
  }

  const VortoBitmap& in_;
  const GaussianFilter& filter_;
  GaussianEdges edges_;
  std::size_t radius_;
  std::shared_ptr<VortoBitmap> segmentMemory_;
  std::shared_ptr<VortoBitmap> rowMemory_;
  std::shared_ptr<VortoBitmap> blockMemory_;
};

}  // namespace

bool blurByWeights(const VortoBitmap& in, const GaussianFilter& filter, GaussianEdges edges, const TakeBlurred& take,
                   std::string* reason) {
  Tiles tiles(in, filter, edges, reason);
  if (!tiles.isMade()) return false;
  return withLayout(in.formatCode, [&](auto layout) { tiles.blur<decltype(layout)>(take); });
}

}  // namespace vorto::effects
