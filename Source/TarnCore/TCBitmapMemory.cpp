// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Mach/mach.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCBitmapSlack.h"
#include "TarnCore/TCPixelFormat.h"

#include <cstdio>

namespace {

constexpr std::uint32_t kSlack = 1024;        // bytes that every bitmap has beyond its pixels
constexpr std::uint32_t kLargeSize = 204800;  // bytes with slack above which whole blocks are reserved
constexpr std::uint32_t kBlockSize = 32768;   // bytes
constexpr std::uint32_t kVmPageSize = 4096;   // bytes; one more is always added
constexpr int kAllocationFlags = VM_FLAGS_ANYWHERE | VM_MAKE_TAG(VM_MEMORY_APPLICATION_SPECIFIC_1);
constexpr vm_prot_t kReadAndWrite = VM_PROT_READ | VM_PROT_WRITE;

constexpr std::uint32_t roundedUpToBlocks(std::uint32_t size) {
  return (size + kBlockSize - 1) / kBlockSize * kBlockSize;
}

// Every step wraps at 32 bits.
std::uint32_t allocationSize(const VortoBitmap& bitmap) {
  const std::uint32_t raw =
      (bitmap.width * bitmap.bitsPerChannel / 8 * bitmap.channels + bitmap.rowPadding) * bitmap.height;
  std::uint32_t size = raw + kSlack;
  if (size > kLargeSize) {
    if (bitmap.channels == 2 && bitmap.formatCode == VortoPixelFormat::YUV8) {
      size = roundedUpToBlocks(bitmap.width * bitmap.height * bitmap.bitsPerChannel / 8 * 4 + kSlack) / 2;
    } else {
      size = roundedUpToBlocks(raw + kSlack);
    }
  }
  return size / kVmPageSize * kVmPageSize + kVmPageSize;
}

vm_address_t addressOf(const void* data) {
  return reinterpret_cast<vm_address_t>(data);
}

kern_return_t allocate(std::uint8_t** data, std::uint32_t size) {
  vm_address_t address = 0;
  const kern_return_t result = vm_allocate(mach_task_self(), &address, size, kAllocationFlags);
  if (result == KERN_SUCCESS) *data = reinterpret_cast<std::uint8_t*>(address);
  return result;
}

}  // namespace

bool (*VortoBitmap::_guaranteeMemory)(unsigned int) = nullptr;

void VortoBitmap::setGuaranteeMemoryCallback(bool (*callback)(unsigned int)) {
  _guaranteeMemory = callback;
}

void VortoBitmap::allocateMemory() {
  deallocateMemory();
  allocSize = allocationSize(*this);

  kern_return_t result = allocate(&data, allocSize);
  if (result != KERN_SUCCESS && _guaranteeMemory) {
    _guaranteeMemory(allocSize);
    result = allocate(&data, allocSize);
  }
  if (result != KERN_SUCCESS) {
    std::fprintf(stderr, "could not allocate vm of size %d because %d\n", static_cast<int>(allocSize), result);
    data = nullptr;
    return;
  }

  vm_size_t entrySize = allocSize;
  result = mach_make_memory_entry(mach_task_self(), &entrySize, addressOf(data), kReadAndWrite, &memoryEntry,
                                  MACH_PORT_NULL);
  if (result != KERN_SUCCESS) {
    std::fprintf(stderr, "could not make port for %p because %d\n", static_cast<void*>(data), result);
    vm_deallocate(mach_task_self(), addressOf(data), allocSize);
    data = nullptr;
    return;
  }
  // A kernel of larger pages names more than was wanted.
  if (entrySize <= UINT32_MAX) allocSize = static_cast<std::uint32_t>(entrySize);
  vorto::poisonSlack(*this);
}

void VortoBitmap::deallocateMemory() {
  if (data) {
    const kern_return_t result = vm_deallocate(mach_task_self(), addressOf(data), allocSize);
    if (result != KERN_SUCCESS)  // names the entry, not the address
      std::fprintf(stderr, "could not deallocate vm %X because %d\n", memoryEntry, result);
    data = nullptr;
  }
  if (memoryEntry) {
    const kern_return_t result = mach_port_deallocate(mach_task_self(), memoryEntry);
    if (result != KERN_SUCCESS) std::fprintf(stderr, "could not deallocate port %X because %d\n", memoryEntry, result);
    memoryEntry = 0;
  }
}

void VortoBitmap::mapIntoMemory() {
  if (data) return;
  vm_address_t address = 0;
  const kern_return_t result = vm_map(mach_task_self(), &address, allocSize, 0, VM_FLAGS_ANYWHERE, memoryEntry, 0,
                                      false, kReadAndWrite, kReadAndWrite, VM_INHERIT_SHARE);
  if (result != KERN_SUCCESS) {
    std::fprintf(stderr, "Could not map %X because %d\n", memoryEntry, result);
    return;
  }
  data = reinterpret_cast<std::uint8_t*>(address);
}

void VortoBitmap::unmapFromMemory() {
  if (!data) return;
  if (mach_munmap(data, allocSize) < 0) {
    std::perror("Could not unmap");
    return;
  }
  data = nullptr;
}
