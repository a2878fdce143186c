// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Mach/Pages.h"

#include <cstddef>
#include <cstdint>

namespace mach {

// KERN_SUCCESS when every page of the range is anonymous memory that vm_allocate made, or of the memory file
// `descriptor`; KERN_INVALID_ADDRESS when not; another code when that cannot be found out.
kern_return_t checkAllocatedMemory(const Range& range);
kern_return_t checkMappingOf(int descriptor, const Range& range);

// The memory behind entries: anonymous pages at `home` until share() turns them into a memory file.
class MemoryObject {
 public:
  explicit MemoryObject(const Range& home) : home_(home), size_(home.size()) {}
  MemoryObject(int descriptor, std::size_t size) : size_(size), descriptor_(descriptor) {}  // takes the descriptor
  MemoryObject(const MemoryObject&) = delete;
  MemoryObject& operator=(const MemoryObject&) = delete;
  ~MemoryObject();

  std::size_t size() const { return size_; }
  const Range& home() const { return home_; }
  int descriptor() const { return descriptor_; }  // -1 until shared
  bool isAnonymous() const { return descriptor_ < 0; }

  kern_return_t share();
  void detach() { detached_ = true; }  // the pages at home are this object's alone from now on
  void lose() { home_ = {}; }          // others have taken the place of the pages at home

 private:
  kern_return_t copyInto(int file) const;

  Range home_;
  std::size_t size_;
  int descriptor_ = -1;
  bool detached_ = false;
};

}  // namespace mach
