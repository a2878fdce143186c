// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/PictureMemory.h"

#include "TarnCore/TCBitmap.h"

#include <array>

namespace host {
namespace {

std::array<const VortoBitmap*, 3> bitmapsOf(const PreviewPicture& picture) {
  return {picture.result.get(), picture.before.get(), picture.fileBefore.get()};
}

}  // namespace

void PictureMemory::add(const PreviewPicture& picture) {
  for (const VortoBitmap* bitmap : bitmapsOf(picture)) {
    if (bitmap && ++holders_[bitmap] == 1) bytes_ += bitmap->allocSize;
  }
}

void PictureMemory::remove(const PreviewPicture& picture) {
  for (const VortoBitmap* bitmap : bitmapsOf(picture)) {
    if (!bitmap) continue;
    const auto held = holders_.find(bitmap);
    if (--held->second > 0) continue;
    bytes_ -= bitmap->allocSize;
    holders_.erase(held);
  }
}

}  // namespace host
