// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Mach/Pages.h"

#include "Platform/Mach/GuardPages.h"
#include "Platform/Mach/KeptMemory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>

namespace mach {

namespace {

constexpr std::size_t kHugePageSize = 2 << 20;

// Address space that starts `offset` bytes into a huge page.
bool reserve(std::size_t size, std::size_t offset, std::uintptr_t* address) {
  const std::size_t room = size >= kHugePageSize ? size + kHugePageSize : size;
  void* const memory = mmap(nullptr, room, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return false;
  const auto start = reinterpret_cast<std::uintptr_t>(memory);
  const std::uintptr_t wanted = room == size ? start : start + ((offset - start) & (kHugePageSize - 1));
  if (wanted > start) munmap(memory, wanted - start);
  if (wanted + size < start + room) munmap(reinterpret_cast<void*>(wanted + size), start + room - (wanted + size));
  *address = wanted;
  return true;
}

kern_return_t mapWhereAsked(std::uintptr_t* address, std::size_t size) {
  void* const wanted = reinterpret_cast<void*>(*address);
  void* const memory =
      mmap(wanted, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
  if (memory == MAP_FAILED) return resultOfErrno(errno);
  if (memory == wanted) return KERN_SUCCESS;
  munmap(memory, size);  // kernels before 4.17 take the address for a hint
  return KERN_NO_SPACE;
}

kern_return_t mapAnywhere(std::uintptr_t* address, std::size_t size) {
  if (size >= kHugePageSize || guardSize() > 0) {
    std::uintptr_t place = 0;
    if (reserve(size + guardSize(), 0, &place)) {
      void* const memory = reinterpret_cast<void*>(place);
      if (mprotect(memory, size, PROT_READ | PROT_WRITE) != 0) {
        const int error = errno;
        munmap(memory, size + guardSize());
        return resultOfErrno(error);
      }
      noteGuard({place, place + size});
      *address = place;
      return KERN_SUCCESS;
    }
  }
  void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return resultOfErrno(errno);
  *address = reinterpret_cast<std::uintptr_t>(memory);
  return KERN_SUCCESS;
}

}  // namespace

std::size_t pageSize() {
  static const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  return size;
}

bool pagesOf(std::uintptr_t address, std::size_t size, Range* pages) {
  const std::uintptr_t mask = pageSize() - 1;
  std::uintptr_t end;
  if (__builtin_add_overflow(address, size, &end) || __builtin_add_overflow(end, mask, &end)) return false;
  *pages = {address & ~mask, end & ~mask};
  return true;
}

kern_return_t resultOfErrno(int error) {
  switch (error) {
    case ENOMEM:
    case EEXIST:
      return KERN_NO_SPACE;
    case EMFILE:
    case ENFILE:
    case ENOSPC:
    case ENOBUFS:
    case ETOOMANYREFS:
      return KERN_RESOURCE_SHORTAGE;
    case EACCES:
    case EPERM:
      return KERN_PROTECTION_FAILURE;
    case EFAULT:
      return KERN_INVALID_ADDRESS;
    case EPIPE:
    case ECONNRESET:
    case ENOTCONN:
      return KERN_TERMINATED;
    case EAGAIN:
      return KERN_OPERATION_TIMED_OUT;
    case EINVAL:
    case EBADF:
    case ENOTSOCK:
      return KERN_INVALID_ARGUMENT;
    default:
      return KERN_FAILURE;
  }
}

void askForHugePages(void* address, std::size_t size) {
  if (size >= kHugePageSize) madvise(address, size, MADV_HUGEPAGE);
}

kern_return_t mapAnonymous(std::uintptr_t* address, std::size_t size, bool fixed) {
  const kern_return_t result = fixed ? mapWhereAsked(address, size) : mapAnywhere(address, size);
  if (result != KERN_SUCCESS) return result;
  void* const memory = reinterpret_cast<void*>(*address);
  askForHugePages(memory, size);
  madvise(memory, size, MADV_DONTDUMP);  // also the mark by which checkAllocatedMemory() knows the pages
  return KERN_SUCCESS;
}

bool reserveLike(const Range& range, std::uintptr_t* address) {
  return reserve(range.size(), range.start % kHugePageSize, address);
}

kern_return_t giveBack(const Range& range) {
  liftGuards(range);
  if (KeptMemory::shared().keep(range)) return KERN_SUCCESS;
  return munmap(reinterpret_cast<void*>(range.start), range.size()) == 0 ? KERN_SUCCESS : resultOfErrno(errno);
}

}  // namespace mach
