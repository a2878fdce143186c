// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Mach/MemoryObject.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>

// What lies at an address is read from the kernel's own list: whoever unmapped memory behind our back, and whatever has
// come to lie there since, is seen here.

namespace mach {

namespace {

struct Mapping {
  Range range;
  bool isReadWrite = false;
  bool isShared = false;
  unsigned long long device = 0;
  unsigned long long inode = 0;
  bool isLeftOutOfDumps = false;
  bool isWipedOnFork = false;
};

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// Reads /proc/self/smaps, one mapping after the other, in ascending order.
class MappingReader {
 public:
  MappingReader() : file_(std::fopen("/proc/self/smaps", "re")) {}

  bool isOpen() const { return file_ != nullptr; }

  std::optional<Mapping> next() {
    Mapping mapping;
    bool isInside = false;
    char line[4608];  // longer than any path
    while (std::fgets(line, sizeof line, file_.get())) {
      if (!isInside) {
        isInside = readHead(line, &mapping);
      } else if (std::strncmp(line, "VmFlags:", 8) == 0) {  // the last line of a mapping
        mapping.isLeftOutOfDumps = std::strstr(line, " dd") != nullptr;
        mapping.isWipedOnFork = std::strstr(line, " wf") != nullptr;
        return mapping;
      }
    }
    return std::nullopt;
  }

 private:
  static bool readHead(const char* line, Mapping* mapping) {
    unsigned long start, end, offset, inode;
    unsigned major, minor;
    char permissions[5];
    if (std::sscanf(line, "%lx-%lx %4s %lx %x:%x %lu", &start, &end, permissions, &offset, &major, &minor, &inode) != 7)
      return false;
    *mapping = {{start, end},
                permissions[0] == 'r' && permissions[1] == 'w',
                permissions[3] == 's',
                makedev(major, minor),
                inode};
    return true;
  }

  std::unique_ptr<std::FILE, CloseFile> file_;
};

template <class Test>
kern_return_t checkCovered(const Range& range, Test test) {
  MappingReader reader;
  if (!reader.isOpen()) return resultOfErrno(errno);
  std::uintptr_t reached = range.start;
  while (reached < range.end) {
    const std::optional<Mapping> mapping = reader.next();
    if (!mapping || mapping->range.start > reached) return KERN_INVALID_ADDRESS;
    if (mapping->range.end <= reached) continue;
    if (!test(*mapping)) return KERN_INVALID_ADDRESS;
    reached = mapping->range.end;
  }
  return KERN_SUCCESS;
}

}  // namespace

// Memory that is kept for the next owner may have been moved to where ours was; as long as it is, forks get none of it.
kern_return_t checkAllocatedMemory(const Range& range) {
  return checkCovered(range, [](const Mapping& mapping) {
    return mapping.isReadWrite && !mapping.isShared && mapping.inode == 0 && mapping.isLeftOutOfDumps &&
           !mapping.isWipedOnFork;
  });
}

kern_return_t checkMappingOf(int descriptor, const Range& range) {
  struct stat status;
  if (fstat(descriptor, &status) != 0) return resultOfErrno(errno);
  return checkCovered(range, [&status](const Mapping& mapping) {
    return mapping.isShared && mapping.inode == status.st_ino && mapping.device == status.st_dev;
  });
}

}  // namespace mach
