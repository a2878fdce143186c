// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/StandardOutput.h"

#include "Host/Messages/Failure.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace host {

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
