// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Mach/MemoryObject.h"

#include "Platform/Sanitizer.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>

namespace mach {

namespace {

// What a peer must not be able to do to memory that we touch; shrinking would make us fault.
constexpr int kSeals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL;

// Growing a file beyond this limit would raise a signal.
bool fitsFileSizeLimit(std::size_t size) {
  rlimit limit;
  return getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY || size <= limit.rlim_cur;
}

}  // namespace

MemoryObject::~MemoryObject() {
  if (descriptor_ >= 0) {
    close(descriptor_);
  } else if (detached_ && home_.size() > 0) {
    giveBack(home_);
  }
}

kern_return_t MemoryObject::copyInto(int file) const {
  unpoisonMemory(reinterpret_cast<const void*>(home_.start), size_);  // whatever its user said: all of it is shared
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
  if (result == KERN_SUCCESS && fcntl(file, F_ADD_SEALS, kSeals) != 0) result = resultOfErrno(errno);

  void* const place = reinterpret_cast<void*>(home_.start);
  if (result == KERN_SUCCESS && detached_) {
    giveBack(home_);
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
