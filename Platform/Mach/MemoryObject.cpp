#include "Platform/Mach/MemoryObject.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>

namespace mach {

namespace {

constexpr std::size_t hugePageSize = 2 << 20;

// What a peer must not be able to do to memory that we touch; shrinking would make us fault.
constexpr int seals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL;

void askForHugePages(void* address, std::size_t size) {
  if (size >= hugePageSize) madvise(address, size, MADV_HUGEPAGE);
}

// Growing a file beyond this limit would raise a signal.
bool fitsFileSizeLimit(std::size_t size) {
  rlimit limit;
  return getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY || size <= limit.rlim_cur;
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

kern_return_t mapAnonymous(std::uintptr_t* address, std::size_t size, bool fixed) {
  void* const wanted = fixed ? reinterpret_cast<void*>(*address) : nullptr;
  const int flags = MAP_PRIVATE | MAP_ANONYMOUS | (fixed ? MAP_FIXED_NOREPLACE : 0);
  void* const memory = mmap(wanted, size, PROT_READ | PROT_WRITE, flags, -1, 0);
  if (memory == MAP_FAILED) return resultOfErrno(errno);
  if (fixed && memory != wanted) {  // kernels before 4.17 take the address for a hint
    munmap(memory, size);
    return KERN_NO_SPACE;
  }
  askForHugePages(memory, size);
  madvise(memory, size, MADV_DONTDUMP);  // also the mark by which checkAllocatedMemory() knows the pages
  *address = reinterpret_cast<std::uintptr_t>(memory);
  return KERN_SUCCESS;
}

MemoryObject::~MemoryObject() {
  if (descriptor_ >= 0) {
    close(descriptor_);
  } else if (detached_ && home_.size() > 0) {
    munmap(reinterpret_cast<void*>(home_.start), home_.size());
  }
}

kern_return_t MemoryObject::copyInto(int file) const {
  std::size_t done = 0;
  while (done < size_) {
    const ssize_t count =
        pwrite(file, reinterpret_cast<const void*>(home_.start + done), size_ - done, static_cast<off_t>(done));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return count < 0 ? resultOfErrno(errno) : KERN_RESOURCE_SHORTAGE;
    done += static_cast<std::size_t>(count);
  }
  return KERN_SUCCESS;
}

kern_return_t MemoryObject::share() {
  if (descriptor_ >= 0) return KERN_SUCCESS;
  if (home_.size() == 0) return KERN_INVALID_ADDRESS;
  const kern_return_t checked = checkAllocatedMemory(home_);
  if (checked != KERN_SUCCESS) return checked;
  if (!fitsFileSizeLimit(size_)) return KERN_RESOURCE_SHORTAGE;

  const int file = memfd_create("vm", MFD_CLOEXEC | MFD_ALLOW_SEALING);
  if (file < 0) return resultOfErrno(errno);
  kern_return_t result = KERN_SUCCESS;
  if (ftruncate(file, static_cast<off_t>(size_)) != 0) result = resultOfErrno(errno);
  if (result == KERN_SUCCESS) result = copyInto(file);
  if (result == KERN_SUCCESS && fcntl(file, F_ADD_SEALS, seals) != 0) result = resultOfErrno(errno);

  void* const place = reinterpret_cast<void*>(home_.start);
  if (result == KERN_SUCCESS && detached_) {
    munmap(place, size_);
  } else if (result == KERN_SUCCESS) {
    if (mmap(place, size_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0) == MAP_FAILED) {
      result = resultOfErrno(errno);
    } else {
      madvise(place, size_, MADV_DONTDUMP);
      askForHugePages(place, size_);
    }
  }
  if (result != KERN_SUCCESS) {
    close(file);
    return result;
  }
  descriptor_ = file;
  return KERN_SUCCESS;
}

}  // namespace mach
