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

// KERN_SUCCESS when every page of the range is anonymous memory that vm_allocate made, or of the memory file
// `descriptor`; KERN_INVALID_ADDRESS when not; another code when that cannot be found out.
kern_return_t checkAllocatedMemory(const Range& range);
kern_return_t checkMappingOf(int descriptor, const Range& range);

// Anonymous memory as vm_allocate makes it; `fixed` refuses to replace what is there.
kern_return_t mapAnonymous(std::uintptr_t* address, std::size_t size, bool fixed);

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
