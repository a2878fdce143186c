// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Preview/BitmapReleases.h"

#include "TarnCore/TCBitmap.h"

#include <sys/mman.h>

#include <algorithm>
#include <utility>

namespace host {
namespace {

constexpr std::size_t kLarge = std::size_t{1} << 20;   // bytes; a hundred of them go at once when a cache is emptied
constexpr std::size_t kSlice = std::size_t{16} << 20;  // that others wait for who map memory meanwhile

// Its pages go while nobody else waits: a second mapping keeps them until the bitmap, whose memory calls lock all
// others, is gone.
void giveBack(BitmapRef bitmap) {
  std::uint8_t* const data = bitmap->data;
  const std::size_t size = bitmap->allocSize;
  void* const last = data ? ::mremap(data, 0, size, MREMAP_MAYMOVE) : MAP_FAILED;
  for (std::size_t done = 0; last != MAP_FAILED && done < size; done += kSlice) {
    ::madvise(data + done, std::min(kSlice, size - done), MADV_DONTNEED);
  }
  bitmap.reset();
  if (last != MAP_FAILED) ::munmap(last, size);
}

}  // namespace

std::shared_ptr<BitmapReleases> BitmapReleases::shared() {
  static const std::shared_ptr<BitmapReleases> one(new BitmapReleases);
  return one;
}

BitmapReleases::BitmapReleases() : thread_([this] { run(); }) {}

BitmapReleases::~BitmapReleases() {
  {
    const std::lock_guard lock(mutex_);
    isEnding_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

BitmapRef BitmapReleases::adopted(BitmapRef bitmap) {
  if (!bitmap || bitmap->allocSize < kLarge) return bitmap;
  const VortoBitmap* const pixels = bitmap.get();
  return {pixels, [self = shared_from_this(), kept = std::move(bitmap)](const VortoBitmap*) mutable {
            self->release(std::move(kept));
          }};
}

void BitmapReleases::release(BitmapRef bitmap) {
  {
    const std::lock_guard lock(mutex_);
    released_.push_back(std::move(bitmap));
  }
  changed_.notify_one();
}

void BitmapReleases::run() {
  std::unique_lock lock(mutex_);
  while (!isEnding_ || !released_.empty()) {
    changed_.wait(lock, [this] { return isEnding_ || !released_.empty(); });
    std::vector<BitmapRef> bitmaps = std::exchange(released_, {});
    lock.unlock();
    for (BitmapRef& bitmap : bitmaps) giveBack(std::move(bitmap));
    lock.lock();
  }
}

}  // namespace host
