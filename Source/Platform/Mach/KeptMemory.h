// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Mach/MemoryObject.h"

#include <mutex>
#include <vector>

namespace mach {

// Memory that was given back and is kept for the next who needs as much: its pages are mapped already.
//
// The pages are moved to an address that nobody knows. So what was given back is unmapped, whoever still has a pointer
// to it faults, and whoever unmaps or replaces what lies at the old address does nothing to what is kept. Pages that
// others may have a share in, that are missing, or that were never anonymous memory cannot be kept: the kernel refuses
// the mark that they must bear.
//
// Every call may be made from any thread.
class KeptMemory {
 public:
  static KeptMemory& shared();

  // Takes the pages of the range away to be kept; false when they cannot be, or are too few to be worth it. Then their
  // bytes may be gone, but they are mapped still.
  bool keep(const Range& range);

  // Memory of exactly that size, as it was allocated first: zero, readable and writable; but for its first `unset`
  // bytes, which may hold what was in them.
  bool take(std::size_t size, std::size_t unset, std::uintptr_t* address);

  // Gives all that is kept back to the system, and returns how many bytes that were.
  std::size_t release();

  // The most bytes that are kept; what is beyond them now is given back.
  void limit(std::size_t bytes);

 private:
  // Those that were kept longest, until the rest fits the limit.
  std::vector<Range> removeBeyondLimit();

  std::mutex mutex_;
  std::vector<Range> kept_;  // the longest kept first
  std::size_t bytes_ = 0;    // of all in kept_
  std::size_t limit_;
  int failures_ = 0;

  KeptMemory();
};

}  // namespace mach
