// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Mach/MemoryObject.h"

#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace mach {

struct Entry {
  std::shared_ptr<MemoryObject> object;
  std::size_t offset = 0;
  std::size_t size = 0;
};

// The entries of this process and the places where their memory lies. Every call is made with mutex() held.
class MemoryEntries {
 public:
  static MemoryEntries& shared();
  std::mutex& mutex() { return mutex_; }

  mach_port_t add(Entry entry);
  const Entry* find(mach_port_t name) const;
  bool remove(mach_port_t name);

  // The memory at the range as an entry would name it: a part of memory that has entries already, or memory that has
  // none yet.
  kern_return_t entryFor(const Range& range, Entry* entry);

  // Something new was mapped at the range: what was noted there is gone.
  void forget(const Range& range);
  void place(const std::shared_ptr<MemoryObject>& object, std::size_t offset, const Range& range);
  // Unmaps the pages of the range; those that only an entry can still reach stay mapped until they are shared or no
  // entry names them any more.
  kern_return_t unmap(const Range& range);

 private:
  struct Placement {
    std::uintptr_t end;
    std::size_t offset;  // in the object
    std::weak_ptr<MemoryObject> object;
  };
  using Placements = std::map<std::uintptr_t, Placement>;  // by start; they never overlap

  void removePlacesOf(const std::shared_ptr<MemoryObject>& object);
  Placements::iterator firstOverlapping(const Range& range);

  std::mutex mutex_;
  std::unordered_map<mach_port_t, Entry> entries_;
  Placements placements_;
  mach_port_t lastName_ = 0x1000;
};

}  // namespace mach
