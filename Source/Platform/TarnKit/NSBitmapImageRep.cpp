// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSBitmapImageRep.h"

#include <algorithm>
#include <new>

namespace {

constexpr std::uint32_t kLargestEdge = 32767;  // of a raster image in Qt
constexpr std::uint32_t kLargestRow = 4 * kLargestEdge + 4096;

}  // namespace

NSBitmapImageRep::NSBitmapImageRep(std::uint32_t pixelsWide, std::uint32_t pixelsHigh, std::uint32_t bytesPerRow) {
  if (pixelsWide > kLargestEdge || pixelsHigh > kLargestEdge || bytesPerRow > kLargestRow) return;
  const std::uint32_t pitch = std::max(bytesPerRow, pixelsWide * 4);
  try {
    data_.resize(std::size_t{pitch} * pixelsHigh);
  } catch (const std::bad_alloc&) {
    return;
  }
  pixelsWide_ = pixelsWide;
  pixelsHigh_ = pixelsHigh;
  bytesPerRow_ = pitch;
}
