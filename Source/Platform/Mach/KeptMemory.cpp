// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Mach/KeptMemory.h"

#include "Platform/Sanitizer.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace mach {

namespace {

constexpr std::size_t kLeastSize = std::size_t{128} << 10;  // below, page faults cost no more than moving pages
constexpr std::size_t kUsualLimit = std::size_t{256} << 20;
constexpr std::size_t kMostRanges = 64;
constexpr int kMostFailures = 16;  // each may cost the address space of a range

void* at(std::uintptr_t address) {
  return reinterpret_cast<void*>(address);
}

void unmapAll(const std::vector<Range>& ranges) {
  for (const Range& range : ranges) munmap(at(range.start), range.size());
}

// Holds for whole anonymous private memory alone; a process that is forked off gets none of the bytes.
bool markAsOurs(const Range& range) {
  return madvise(at(range.start), range.size(), MADV_WIPEONFORK) == 0;
}

// What the last owner may have changed.
bool restore(const Range& range) {
  void* const start = at(range.start);
  return mprotect(start, range.size(), PROT_READ | PROT_WRITE) == 0 &&
         madvise(start, range.size(), MADV_KEEPONFORK) == 0 && madvise(start, range.size(), MADV_DOFORK) == 0 &&
         madvise(start, range.size(), MADV_DONTDUMP) == 0;
}

}  // namespace

// Memory that comes and goes hides mistakes from the address sanitizer: there, only what opts in is kept.
KeptMemory::KeptMemory() : limit_(kHasAddressSanitizer ? 0 : kUsualLimit) {}

KeptMemory& KeptMemory::shared() {
  static KeptMemory& memory = *new KeptMemory;  // statics may still own bitmaps when the process ends
  return memory;
}

bool KeptMemory::keep(const Range& range) {
  if (range.size() < kLeastSize) return false;
  {
    const std::lock_guard lock(mutex_);
    if (range.size() > limit_ || failures_ >= kMostFailures) return false;
  }
  std::uintptr_t place = 0;
  if (!markAsOurs(range) || !reserveLike(range, &place)) return false;
  const void* const moved =
      mremap(at(range.start), range.size(), range.size(), MREMAP_MAYMOVE | MREMAP_FIXED, at(place));
  std::vector<Range> tooMuch;
  {
    const std::lock_guard lock(mutex_);
    if (moved == MAP_FAILED) {  // the kernel may have unmapped the place, and others may be there: it is left alone
      ++failures_;
      return false;
    }
    kept_.push_back({place, place + range.size()});
    bytes_ += range.size();
    tooMuch = removeBeyondLimit();
  }
  unmapAll(tooMuch);
  return true;
}

bool KeptMemory::take(std::size_t size, std::size_t unset, std::uintptr_t* address) {
  Range range;
  {
    const std::lock_guard lock(mutex_);
    // The latest one is the likeliest to be in a cache.
    const auto found = std::find_if(kept_.rbegin(), kept_.rend(), [size](const Range& r) { return r.size() == size; });
    if (found == kept_.rend()) return false;
    range = *found;
    kept_.erase(std::next(found).base());
    bytes_ -= size;
  }
  if (!restore(range)) {
    unmapAll({range});
    return false;
  }
  const std::size_t kept = std::min(unset, size);
  std::memset(at(range.start + kept), 0, size - kept);
  *address = range.start;
  return true;
}

std::size_t KeptMemory::release() {
  std::vector<Range> all;
  std::size_t bytes = 0;
  {
    const std::lock_guard lock(mutex_);
    std::swap(all, kept_);
    std::swap(bytes, bytes_);
  }
  unmapAll(all);
  return bytes;
}

void KeptMemory::limit(std::size_t bytes) {
  std::vector<Range> tooMuch;
  {
    const std::lock_guard lock(mutex_);
    limit_ = bytes;
    tooMuch = removeBeyondLimit();
  }
  unmapAll(tooMuch);
}

std::vector<Range> KeptMemory::removeBeyondLimit() {
  std::vector<Range> removed;
  while (bytes_ > limit_ || kept_.size() > kMostRanges) {
    removed.push_back(kept_.front());
    bytes_ -= kept_.front().size();
    kept_.erase(kept_.begin());
  }
  return removed;
}

}  // namespace mach
