// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Mach/mach.h"

#include <cstddef>
#include <cstdint>

namespace mach {

struct Range {
  std::uintptr_t start = 0;
  std::uintptr_t end = 0;  // one past the last byte

  std::size_t size() const { return end - start; }
  bool contains(const Range& o) const { return start <= o.start && o.end <= end; }
  bool overlaps(const Range& o) const { return start < o.end && o.start < end; }
};

std::size_t pageSize();
// The pages that the bytes touch; false when they wrap around the address space.
bool pagesOf(std::uintptr_t address, std::size_t size, Range* pages);
kern_return_t resultOfErrno(int error);

// Memory of two megabytes and more takes part in huge pages, and starts at the start of one where we choose the place.
void askForHugePages(void* address, std::size_t size);

// Anonymous memory as vm_allocate makes it; `fixed` refuses to replace what is there.
kern_return_t mapAnonymous(std::uintptr_t* address, std::size_t size, bool fixed);

// Address space without memory to which the pages of the range can be moved without taking huge pages apart.
bool reserveLike(const Range& range, std::uintptr_t* address);

// Unmaps the pages, mapped or not, or keeps them for the next allocation (KeptMemory); either way nothing is mapped
// there afterwards.
kern_return_t giveBack(const Range& range);

}  // namespace mach
