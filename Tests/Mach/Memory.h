// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Mach/mach.h"
#include "Tests/Support/ChildProcess.h"

inline const mach_port_t self = mach_task_self();
constexpr vm_size_t page = 4096;
constexpr vm_prot_t readAndWrite = VM_PROT_READ | VM_PROT_WRITE;

inline std::uint8_t* bytesAt(vm_address_t address) {
  return reinterpret_cast<std::uint8_t*>(address);
}

inline vm_address_t allocated(vm_size_t size) {
  vm_address_t address = 0;
  EXPECT_EQ(vm_allocate(self, &address, size, VM_FLAGS_ANYWHERE), KERN_SUCCESS);
  return address;
}

// Memory whose every page begins with its number, from 1 on.
inline vm_address_t numbered(vm_size_t pages) {
  const vm_address_t address = allocated(pages * page);
  for (vm_size_t i = 0; i < pages; ++i) bytesAt(address)[i * page] = static_cast<std::uint8_t>(i + 1);
  return address;
}

inline mach_port_t entryOf(vm_address_t address, vm_size_t size) {
  mach_port_t entry = MACH_PORT_NULL;
  EXPECT_EQ(mach_make_memory_entry(self, &size, address, readAndWrite, &entry, MACH_PORT_NULL), KERN_SUCCESS);
  EXPECT_NE(entry, MACH_PORT_NULL);
  return entry;
}

inline kern_return_t mapEntry(mach_port_t entry, vm_address_t* address, vm_size_t size, vm_offset_t offset = 0,
                              bool copy = false) {
  return vm_map(self, address, size, 0, VM_FLAGS_ANYWHERE, entry, offset, copy, readAndWrite, readAndWrite,
                VM_INHERIT_SHARE);
}

// Where the entry's memory is mapped then.
inline vm_address_t placeOf(mach_port_t entry, vm_size_t size, vm_offset_t offset = 0, bool copy = false) {
  vm_address_t address = 0;
  EXPECT_EQ(mapEntry(entry, &address, size, offset, copy), KERN_SUCCESS);
  return address;
}

inline void release(std::initializer_list<mach_port_t> entries,
                    std::initializer_list<std::pair<vm_address_t, vm_size_t>> memory) {
  for (const mach_port_t entry : entries) EXPECT_EQ(mach_port_deallocate(self, entry), KERN_SUCCESS);
  for (const auto& [address, size] : memory) EXPECT_EQ(vm_deallocate(self, address, size), KERN_SUCCESS);
}

inline bool isMapped(vm_address_t address, vm_size_t size = page) {
  return msync(bytesAt(address), size, MS_ASYNC) == 0;
}
