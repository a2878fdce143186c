// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/ExrTiles.h"

#include <algorithm>
#include <limits>

namespace host::exr {
namespace {

std::uint64_t tilesOfEdge(std::uint64_t pixels, std::uint64_t tile) {
  return (pixels + tile - 1) / tile;
}

std::uint64_t levelEdge(std::uint64_t edge, unsigned level, bool roundUp) {
  const std::uint64_t whole = roundUp ? (edge + (std::uint64_t{1} << level) - 1) >> level : edge >> level;
  return std::max<std::uint64_t>(whole, 1);
}

unsigned levelCount(std::uint64_t edge, bool roundUp) {
  unsigned levels = 1;
  while (levelEdge(edge, levels - 1, roundUp) > 1) ++levels;
  return levels;
}

std::uint64_t tileCount(const Part& part, std::uint64_t most) {
  const unsigned mode = part.tileMode & 0xF;
  const bool roundUp = part.tileMode >> 4 != 0;
  const auto tiles = [&](unsigned levelX, unsigned levelY) {
    return tilesOfEdge(levelEdge(part.data.width(), levelX, roundUp), part.tileWidth) *
           tilesOfEdge(levelEdge(part.data.height(), levelY, roundUp), part.tileHeight);
  };
  std::uint64_t count = tiles(0, 0);
  if (mode == 1) {
    const unsigned levels = levelCount(std::max(part.data.width(), part.data.height()), roundUp);
    for (unsigned level = 1; level < levels && count <= most; ++level) count += tiles(level, level);
  } else if (mode == 2) {
    const unsigned across = levelCount(part.data.width(), roundUp);
    const unsigned levels = across * levelCount(part.data.height(), roundUp);
    for (unsigned level = 1; level < levels && count <= most; ++level) count += tiles(level % across, level / across);
  }
  return count;
}

}  // namespace

bool hasTiles(const Part& part) {
  constexpr std::uint64_t kLargest = std::numeric_limits<std::int32_t>::max();
  return part.tileWidth > 0 && part.tileHeight > 0 && part.tileWidth <= kLargest && part.tileHeight <= kLargest &&
         (part.tileMode & 0xF) <= 2 && part.tileMode >> 4 <= 1;
}

std::uint64_t tilesAcross(const Part& part) {
  return tilesOfEdge(part.data.width(), part.tileWidth);
}
std::uint64_t tilesDown(const Part& part) {
  return tilesOfEdge(part.data.height(), part.tileHeight);
}

std::uint64_t chunkCount(const Part& part, std::uint64_t most) {
  return part.isTiled ? tileCount(part, most) : tilesOfEdge(part.data.height(), rowsOfBlock(part.compression));
}

}  // namespace host::exr
