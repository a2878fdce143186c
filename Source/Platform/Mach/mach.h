// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <cstddef>
#include <cstdint>

// The kernel's virtual memory calls: memory of one's own that can be named by an entry, and an entry that can be mapped
// again or handed to another process.
//
// Memory is page aligned, zero at first and anonymous; it is left out of core dumps. An entry costs no file descriptor
// until it is mapped or handed on; then its memory is turned, at its address and with its bytes, into a sealed memory
// file that the entry holds open. Nobody may write to the memory while that happens. As in the kernel, memory that was
// given back with vm_deallocate or mach_munmap lives on while an entry names it. Bytes that were unmapped with the
// C library's munmap before the entry was first shared are lost; such an entry gives KERN_INVALID_ADDRESS.
//
// Memory of 128 KiB and more that is given back, and that no entry ever shared, is kept for the next allocation of its
// size anywhere, which finds it zero as ever. So a host whose pictures come and go with every frame pays for clearing
// them, not for page faults. Kept memory lies where nobody knows it: what was given back is unmapped for its former
// owner, and nobody's pointer reaches what is kept. It is given back to the system before an allocation is called
// failed. A build with the address sanitizer keeps nothing by default, and puts a page that faults behind memory that
// was allocated anywhere.
//
// Every call may be made from any thread. Outputs are written on success alone, unless said otherwise.

using kern_return_t = int;
using boolean_t = int;
using mach_port_t = std::uint32_t;
using vm_map_t = mach_port_t;
using vm_address_t = std::uintptr_t;
using vm_offset_t = std::uintptr_t;
using vm_size_t = std::size_t;
using vm_prot_t = int;
using vm_inherit_t = unsigned;

enum : kern_return_t {
  KERN_SUCCESS = 0,
  KERN_INVALID_ADDRESS = 1,
  KERN_PROTECTION_FAILURE = 2,
  KERN_NO_SPACE = 3,
  KERN_INVALID_ARGUMENT = 4,
  KERN_FAILURE = 5,
  KERN_RESOURCE_SHORTAGE = 6,
  KERN_INVALID_NAME = 15,
  KERN_INVALID_VALUE = 18,
  KERN_INVALID_OBJECT = 29,
  KERN_TERMINATED = 37,
  KERN_OPERATION_TIMED_OUT = 49,
};

constexpr mach_port_t MACH_PORT_NULL = 0;

constexpr vm_prot_t VM_PROT_NONE = 0;
constexpr vm_prot_t VM_PROT_READ = 1;
constexpr vm_prot_t VM_PROT_WRITE = 2;

constexpr int VM_FLAGS_FIXED = 0;
constexpr int VM_FLAGS_ANYWHERE = 1;
constexpr int VM_MEMORY_APPLICATION_SPECIFIC_1 = 240;
constexpr int VM_MAKE_TAG(int tag) {
  return static_cast<int>(static_cast<unsigned>(tag) << 24);
}  // means nothing here

constexpr vm_inherit_t VM_INHERIT_SHARE = 0;
constexpr vm_inherit_t VM_INHERIT_COPY = 1;  // taken as share for shared memory
constexpr vm_inherit_t VM_INHERIT_NONE = 2;

TARN_EXPORT mach_port_t mach_task_self();  // the only task that these calls serve

// Reserves `size` bytes, rounded up to pages, anywhere or at *address. Size 0 succeeds with the address 0.
TARN_EXPORT kern_return_t vm_allocate(vm_map_t task, vm_address_t* address, vm_size_t size, int flags);

// For who overwrites what is allocated, and would have it cleared in vain: while one lives, the first `bytes` bytes of
// what vm_allocate gives this thread may hold what this process had in memory that it gave back. The innermost counts.
class TARN_EXPORT VMUnsetMemory {
 public:
  explicit VMUnsetMemory(vm_size_t bytes);
  ~VMUnsetMemory();
  VMUnsetMemory(const VMUnsetMemory&) = delete;
  VMUnsetMemory& operator=(const VMUnsetMemory&) = delete;

 private:
  vm_size_t outer_;
};

// Gives back all pages that the range touches, mapped or not. Size 0 succeeds and does nothing.
TARN_EXPORT kern_return_t vm_deallocate(vm_map_t task, vm_address_t address, vm_size_t size);

// Maps `size` bytes of the entry from the page-aligned `offset` on, shared, or as a copy of the bytes of this moment.
// Without an entry (MACH_PORT_NULL) the memory is fresh. A mask must be less than a page. One entry may be mapped
// several times: the same bytes at several addresses, so what copies from one to another, expecting them apart, is
// undefined.
TARN_EXPORT kern_return_t vm_map(vm_map_t task, vm_address_t* address, vm_size_t size, vm_address_t mask, int flags,
                                 mach_port_t entry, vm_offset_t offset, boolean_t copy, vm_prot_t protection,
                                 vm_prot_t maximum, vm_inherit_t inheritance);

// Names the pages that *size bytes at `address` touch, memory that came from vm_allocate or vm_map, and makes *size
// their size. The permission is read and write together; there is no parent. Entries may name the same memory, or a
// part of what another names, but not overlap it otherwise.
TARN_EXPORT kern_return_t mach_make_memory_entry(vm_map_t task, vm_size_t* size, vm_offset_t address,
                                                 vm_prot_t permission, mach_port_t* entry, mach_port_t parent);

// Gives the name back; memory that is mapped stays.
TARN_EXPORT kern_return_t mach_port_deallocate(vm_map_t task, mach_port_t name);

// munmap of the C library that knows of entries, as the kernel's does: -1 with errno on failure.
TARN_EXPORT int mach_munmap(void* address, std::size_t size);

// Gives all kept memory back to the system, and returns how many bytes that were.
TARN_EXPORT vm_size_t mach_release_kept_memory();

// The most bytes that are kept, 256 MiB at first; 0 for none.
TARN_EXPORT void mach_limit_kept_memory(vm_size_t bytes);

// Hand an entry to another process, and take one, over a connected Unix stream socket, with a note of the caller's of
// at most mach_entry_note_limit bytes. Both wait as the socket's own timeouts say and never raise SIGPIPE.
//
// KERN_TERMINATED: the other side has closed. KERN_OPERATION_TIMED_OUT: the socket's timeout, or nothing to read on one
// that does not block. KERN_INVALID_VALUE: the message is not one of these, carries no or several descriptors, or a
// longer note than `capacity`. KERN_PROTECTION_FAILURE: the memory may still be shrunk or cannot be written.
// KERN_INVALID_ADDRESS: it is smaller than stated. KERN_RESOURCE_SHORTAGE: no descriptors or memory. After a failure
// the socket is no longer in step and should be closed; no descriptor is left behind.
constexpr std::size_t mach_entry_note_limit = 1024;
TARN_EXPORT kern_return_t mach_send_memory_entry(int socket, mach_port_t entry, const void* note, std::size_t noteSize);
TARN_EXPORT kern_return_t mach_receive_memory_entry(int socket, mach_port_t* entry, vm_size_t* size, void* note,
                                                    std::size_t capacity, std::size_t* noteSize);
