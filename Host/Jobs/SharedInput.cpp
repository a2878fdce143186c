// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Jobs/SharedInput.h"

#include "Host/Messages/Failure.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string>

namespace host {
namespace {

[[noreturn]] void refuse() {
  throw Failure(ExitCode::Input, std::string("cannot read the standard input: ") + std::strerror(errno));
}

void writeAll(int descriptor, const char* bytes, ssize_t size) {
  while (size > 0) {
    const ssize_t written = ::write(descriptor, bytes, static_cast<std::size_t>(size));
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) refuse();
    bytes += written;
    size -= written;
  }
}

}  // namespace

SharedInput::SharedInput() : memory_(::memfd_create("vorto-input", MFD_CLOEXEC)) {
  if (memory_ < 0) refuse();
  std::array<char, 65536> part;
  for (;;) {
    const ssize_t size = ::read(STDIN_FILENO, part.data(), part.size());
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) refuse();
    if (size == 0) break;
    writeAll(memory_, part.data(), size);
  }
  const int own = opened();
  if (::dup2(own, STDIN_FILENO) < 0) refuse();
  ::close(own);
}

SharedInput::~SharedInput() {
  if (memory_ >= 0) ::close(memory_);
}

// Opened again it has a position of its own.
int SharedInput::opened() const {
  const std::string path = "/proc/self/fd/" + std::to_string(memory_);
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) refuse();
  return descriptor;
}

// Only memory has seals.
void rewindSharedInput() {
  if (::fcntl(STDIN_FILENO, F_GET_SEALS) >= 0) ::lseek(STDIN_FILENO, 0, SEEK_SET);
}

}  // namespace host
