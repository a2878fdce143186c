// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/FileContents.h"

#include "Host/Files/StandardInput.h"
#include "Host/Messages/Failure.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace host {
namespace {

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ > STDERR_FILENO) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return number_; }

 private:
  const int number_;
};

// A cause that is told with the file's name in front of it.
struct Refusal {
  std::string reason;
};

[[noreturn]] void refuseWithError(const char* what) {
  throw Refusal{std::string(what) + ": " + std::strerror(errno)};
}

std::uint64_t sizeOfRegularFile(int descriptor) {
  struct stat status;
  if (fstat(descriptor, &status) != 0) refuseWithError("cannot open");
  if (!S_ISREG(status.st_mode)) throw Refusal{S_ISDIR(status.st_mode) ? "is a folder" : "is no regular file"};
  return static_cast<std::uint64_t>(status.st_size);
}

}  // namespace

// To the end rather than by the size: files of the kernel have size 0, and others may grow meanwhile.
void FileContents::readToEnd(int descriptor, std::uint64_t expected) {
  std::size_t capacity = 0;
  for (;;) {
    if (std::max<std::uint64_t>(size_, expected) > kLargestFile) {
      throw Refusal{"is larger than " + std::to_string(kLargestFile >> 30) + " GiB"};
    }
    if (size_ == capacity) {
      capacity = std::max<std::size_t>({static_cast<std::size_t>(expected) + 1, size_ * 2, 65536});
      void* const larger = std::realloc(bytes_.get(), capacity);
      if (!larger) throw Refusal{"there is not enough memory for it"};
      (void)bytes_.release();
      bytes_.reset(static_cast<std::uint8_t*>(larger));
    }
    const ssize_t count = read(descriptor, bytes_.get() + size_, capacity - size_);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) refuseWithError("cannot read");
    if (count == 0) return;
    size_ += static_cast<std::size_t>(count);
  }
}

FileContents FileContents::ofFile(const std::string& path) {
  FileContents contents;
  try {
    if (path == "-") {
      beginStandardInput();
      contents.readToEnd(STDIN_FILENO, 0);
      return contents;
    }
    // Without waiting: opening a pipe would otherwise wait for somebody to write to it.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (file.number() < 0) refuseWithError("cannot open");
    contents.readToEnd(file.number(), sizeOfRegularFile(file.number()));
    return contents;
  } catch (const Refusal& refusal) {
    throw Failure(ExitCode::Input,
                  "cannot read " + (path == "-" ? "the standard input" : path) + ": " + refusal.reason);
  }
}

}  // namespace host
