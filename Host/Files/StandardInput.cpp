// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/StandardInput.h"

#include "Host/Messages/Failure.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>

namespace host {
namespace {

enum class Keeping { Not, WhenRead, Kept };
Keeping keeping = Keeping::Not;
bool wasRead = false;

[[noreturn]] void refuse(const std::string& reason) {
  throw Failure(ExitCode::Input, "cannot read the standard input: " + reason);
}

class Memory {
 public:
  Memory() : descriptor_(::memfd_create("vorto-input", MFD_CLOEXEC)) {
    if (descriptor_ < 0) refuse(std::strerror(errno));
  }
  ~Memory() { ::close(descriptor_); }
  Memory(const Memory&) = delete;
  Memory& operator=(const Memory&) = delete;

  void append(const char* bytes, ssize_t size) {
    while (size > 0) {
      const ssize_t written = ::write(descriptor_, bytes, static_cast<std::size_t>(size));
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) refuse(std::strerror(errno));
      bytes += written;
      size -= written;
    }
  }
  int descriptor() const { return descriptor_; }

 private:
  const int descriptor_;
};

// Opened again it has a position of its own.
int openedAgain(int descriptor) {
  const int own = ::open(("/proc/self/fd/" + std::to_string(descriptor)).c_str(), O_RDONLY | O_CLOEXEC);
  if (own < 0) refuse(std::strerror(errno));
  return own;
}

}  // namespace

void keepStandardInputWhenRead() {
  if (keeping == Keeping::Not) keeping = Keeping::WhenRead;
}

void standardInputIsKept() {
  keeping = Keeping::Kept;
}

void keepStandardInput() {
  if (keeping == Keeping::Kept) return;
  Memory memory;
  std::array<char, 65536> part;
  for (std::uint64_t all = 0;;) {
    const ssize_t size = ::read(STDIN_FILENO, part.data(), part.size());
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) refuse(std::strerror(errno));
    if (size == 0) break;
    all += static_cast<std::uint64_t>(size);
    if (all > kLargestFile) refuse("is larger than " + std::to_string(kLargestFile >> 30) + " GiB");
    memory.append(part.data(), size);
  }
  const int own = openedAgain(memory.descriptor());
  const bool isInPlace = ::dup2(own, STDIN_FILENO) >= 0;
  if (own != STDIN_FILENO) ::close(own);
  if (!isInPlace) refuse(std::strerror(errno));
  keeping = Keeping::Kept;
}

bool isStandardInputKept() {
  return keeping == Keeping::Kept;
}

int openedStandardInput() {
  return keeping == Keeping::Kept ? openedAgain(STDIN_FILENO) : -1;
}

void beginStandardInput() {
  wasRead = true;
  if (keeping == Keeping::WhenRead) keepStandardInput();
  if (keeping == Keeping::Kept) ::lseek(STDIN_FILENO, 0, SEEK_SET);
}

bool wasStandardInputRead() {
  return wasRead;
}

bool isOwnDescriptor(const std::string& path) {
  const std::string whole = std::filesystem::path(path).lexically_normal().string();
  return whole == "/dev/stdin" || whole.starts_with("/dev/fd/") || whole.starts_with("/proc/self/fd/") ||
         whole.starts_with("/proc/thread-self/fd/");
}

}  // namespace host
