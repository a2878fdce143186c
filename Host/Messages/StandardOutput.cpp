// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/StandardOutput.h"

#include "Host/Messages/Failure.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace host {

void occupyStandardDescriptors() {
  for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(number, F_GETFD) >= 0) continue;
    ::open("/dev/null", number == STDIN_FILENO ? O_WRONLY : O_RDONLY);  // gets the lowest number that is free: this one
  }
}

void printText(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
}

void printBytes(std::span<const std::uint8_t> bytes) {
  std::fwrite(bytes.data(), 1, bytes.size(), stdout);
}

void finishStandardOutput() {
  if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
    throw Failure(ExitCode::Output, std::string("cannot write to standard output: ") + std::strerror(errno));
  }
}

}  // namespace host
