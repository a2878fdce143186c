// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Mach/GuardPages.h"

#if TARN_ADDRESS_SANITIZER

#include <sys/mman.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <mutex>

namespace mach {

namespace {

struct Guards {
  std::mutex mutex;
  std::map<std::uintptr_t, std::uintptr_t> startOf;  // of the memory before the guard, by the guard's address
};

Guards& guards() {
  static Guards& all = *new Guards;  // statics may still own bitmaps when the process ends
  return all;
}

}  // namespace

void noteGuard(const Range& memory) {
  const std::lock_guard lock(guards().mutex);
  guards().startOf[memory.end] = memory.start;
}

void liftGuards(const Range& range) {
  const std::lock_guard lock(guards().mutex);
  auto& startOf = guards().startOf;
  for (auto found = startOf.upper_bound(range.start); found != startOf.end() && found->second < range.end;) {
    const auto [guard, start] = *found;
    const std::uintptr_t from = std::max(start, range.start);
    unpoisonMemory(reinterpret_cast<void*>(from), std::min(guard, range.end) - from);
    if (guard > range.end) return;
    munmap(reinterpret_cast<void*>(guard), pageSize());
    found = startOf.erase(found);
  }
}

}  // namespace mach

#endif
