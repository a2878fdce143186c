// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Mach/KeptMemory.h"
#include "Platform/Mach/MemoryEntries.h"
#include "Platform/Mach/mach.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace {

using mach::MemoryEntries;
using mach::Range;

constexpr mach_port_t kTaskSelf = 0x103;

// The size in whole pages; 0 when that is more than can be addressed.
vm_size_t wholePages(vm_size_t size) {
  Range pages;
  return mach::pagesOf(0, size, &pages) ? pages.size() : 0;
}

// Whole pages. With the lock held.
kern_return_t allocatePages(vm_address_t* address, vm_size_t size, int flags) {
  const kern_return_t result = mach::mapAnonymous(address, size, (flags & VM_FLAGS_ANYWHERE) == 0);
  if (result == KERN_SUCCESS) MemoryEntries::shared().forget({*address, *address + size});
  return result;
}

thread_local vm_size_t unsetBytes = 0;

// Memory that was kept, and is cleared while nobody has to wait for the lock.
bool allocateKept(vm_address_t* address, vm_size_t size) {
  if (!mach::KeptMemory::shared().take(size, unsetBytes, address)) return false;
  const std::lock_guard lock(MemoryEntries::shared().mutex());
  MemoryEntries::shared().forget({*address, *address + size});
  return true;
}

// What fails for want of memory, address space or a free address is tried again when kept memory was in the way.
template <class Step>
kern_return_t tryTwice(Step step) {
  const kern_return_t result = step();
  const bool isShort = result == KERN_NO_SPACE || result == KERN_RESOURCE_SHORTAGE;
  return isShort && mach::KeptMemory::shared().release() > 0 ? step() : result;
}

kern_return_t readAll(int file, vm_address_t address, std::size_t size, std::size_t offset) {
  for (std::size_t done = 0; done < size;) {
    const ssize_t count =
        pread(file, reinterpret_cast<void*>(address + done), size - done, static_cast<off_t>(offset + done));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return KERN_FAILURE;
    done += static_cast<std::size_t>(count);
  }
  return KERN_SUCCESS;
}

kern_return_t mapCopy(vm_address_t* address, vm_size_t size, int flags, int file, std::size_t offset) {
  const kern_return_t allocated = allocatePages(address, size, flags);
  if (allocated != KERN_SUCCESS) return allocated;
  const kern_return_t result = readAll(file, *address, size, offset);
  if (result != KERN_SUCCESS) mach::giveBack({*address, *address + size});
  return result;
}

int protectionOf(vm_prot_t protection) {
  return ((protection & VM_PROT_READ) ? PROT_READ : 0) | ((protection & VM_PROT_WRITE) ? PROT_WRITE : 0);
}

kern_return_t mapShared(vm_address_t* address, vm_size_t size, int flags, const mach::Entry& entry, std::size_t offset,
                        vm_inherit_t inheritance) {
  const bool isFixed = (flags & VM_FLAGS_ANYWHERE) == 0;
  void* const wanted = isFixed ? reinterpret_cast<void*>(*address) : nullptr;
  void* const memory = mmap(wanted, size, PROT_READ | PROT_WRITE, MAP_SHARED | (isFixed ? MAP_FIXED_NOREPLACE : 0),
                            entry.object->descriptor(), static_cast<off_t>(offset));
  if (memory == MAP_FAILED) return mach::resultOfErrno(errno);
  if (isFixed && memory != wanted) {
    munmap(memory, size);
    return KERN_NO_SPACE;
  }
  madvise(memory, size, MADV_DONTDUMP);
  if (inheritance == VM_INHERIT_NONE) madvise(memory, size, MADV_DONTFORK);
  *address = reinterpret_cast<vm_address_t>(memory);
  MemoryEntries::shared().place(entry.object, offset, {*address, *address + size});
  return KERN_SUCCESS;
}

// With the lock held.
kern_return_t mapEntry(vm_address_t* address, vm_size_t size, int flags, mach_port_t name, vm_offset_t offset,
                       bool copy, vm_inherit_t inheritance) {
  const mach::Entry* const entry = MemoryEntries::shared().find(name);
  if (!entry) return KERN_INVALID_OBJECT;
  if (offset > entry->size || size > entry->size - offset) return KERN_INVALID_ARGUMENT;
  const kern_return_t shared = entry->object->share();
  if (shared != KERN_SUCCESS) return shared;
  const std::size_t start = entry->offset + offset;
  return copy ? mapCopy(address, size, flags, entry->object->descriptor(), start)
              : mapShared(address, size, flags, *entry, start, inheritance);
}

}  // namespace

mach_port_t mach_task_self() {
  return kTaskSelf;
}

VMUnsetMemory::VMUnsetMemory(vm_size_t bytes) : outer_(std::exchange(unsetBytes, bytes)) {}

VMUnsetMemory::~VMUnsetMemory() {
  unsetBytes = outer_;
}

kern_return_t vm_allocate(vm_map_t task, vm_address_t* address, vm_size_t size, int flags) {
  if (task != kTaskSelf || !address) return KERN_INVALID_ARGUMENT;
  if (size == 0) {
    *address = 0;
    return KERN_SUCCESS;
  }
  const bool isAnywhere = (flags & VM_FLAGS_ANYWHERE) != 0;
  const vm_size_t bytes = wholePages(size);
  if (bytes == 0 || (!isAnywhere && *address % mach::pageSize() != 0)) return KERN_INVALID_ARGUMENT;
  if (isAnywhere && allocateKept(address, bytes)) return KERN_SUCCESS;
  return tryTwice([address, bytes, flags] {
    const std::lock_guard lock(MemoryEntries::shared().mutex());
    return allocatePages(address, bytes, flags);
  });
}

kern_return_t vm_deallocate(vm_map_t task, vm_address_t address, vm_size_t size) {
  Range pages;
  if (task != kTaskSelf || !mach::pagesOf(address, size, &pages)) return KERN_INVALID_ARGUMENT;
  if (size == 0) return KERN_SUCCESS;
  const std::lock_guard lock(MemoryEntries::shared().mutex());
  return MemoryEntries::shared().unmap(pages);
}

kern_return_t vm_map(vm_map_t task, vm_address_t* address, vm_size_t size, vm_address_t mask, int flags,
                     mach_port_t name, vm_offset_t offset, boolean_t copy, vm_prot_t protection, vm_prot_t maximum,
                     vm_inherit_t inheritance) {
  const vm_size_t bytes = wholePages(size);
  if (task != kTaskSelf || !address || bytes == 0 || mask >= mach::pageSize() || offset % mach::pageSize() != 0 ||
      (protection & ~maximum) != 0 || inheritance > VM_INHERIT_NONE)
    return KERN_INVALID_ARGUMENT;
  if ((flags & VM_FLAGS_ANYWHERE) == 0 && *address % mach::pageSize() != 0) return KERN_INVALID_ARGUMENT;

  vm_address_t place = *address;
  const kern_return_t result = tryTwice([&] {
    const std::lock_guard lock(MemoryEntries::shared().mutex());
    if (name == MACH_PORT_NULL) return allocatePages(&place, bytes, flags);
    return mapEntry(&place, bytes, flags, name, offset, copy, inheritance);
  });
  if (result != KERN_SUCCESS) return result;
  if (protectionOf(protection) != (PROT_READ | PROT_WRITE))
    mprotect(reinterpret_cast<void*>(place), bytes, protectionOf(protection));
  *address = place;
  return KERN_SUCCESS;
}

kern_return_t mach_make_memory_entry(vm_map_t task, vm_size_t* size, vm_offset_t address, vm_prot_t permission,
                                     mach_port_t* name, mach_port_t parent) {
  Range pages;
  if (task != kTaskSelf || !size || *size == 0 || !name || parent != MACH_PORT_NULL ||
      permission != (VM_PROT_READ | VM_PROT_WRITE) || !mach::pagesOf(address, *size, &pages))
    return KERN_INVALID_ARGUMENT;
  MemoryEntries& entries = MemoryEntries::shared();
  const std::lock_guard lock(entries.mutex());
  mach::Entry entry;
  const kern_return_t result = entries.entryFor(pages, &entry);
  if (result != KERN_SUCCESS) return result;
  *size = entry.size;
  *name = entries.add(std::move(entry));
  return KERN_SUCCESS;
}

kern_return_t mach_port_deallocate(vm_map_t task, mach_port_t name) {
  if (task != kTaskSelf) return KERN_INVALID_ARGUMENT;
  const std::lock_guard lock(MemoryEntries::shared().mutex());
  return MemoryEntries::shared().remove(name) ? KERN_SUCCESS : KERN_INVALID_NAME;
}

int mach_munmap(void* address, std::size_t size) {
  const auto start = reinterpret_cast<std::uintptr_t>(address);
  Range pages;
  if (size == 0 || start % mach::pageSize() != 0 || !mach::pagesOf(start, size, &pages)) {
    errno = EINVAL;
    return -1;
  }
  const std::lock_guard lock(MemoryEntries::shared().mutex());
  if (MemoryEntries::shared().unmap(pages) == KERN_SUCCESS) return 0;
  errno = ENOMEM;
  return -1;
}

vm_size_t mach_release_kept_memory() {
  return mach::KeptMemory::shared().release();
}

void mach_limit_kept_memory(vm_size_t bytes) {
  mach::KeptMemory::shared().limit(bytes);
}
