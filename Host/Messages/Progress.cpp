// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/Progress.h"

#include <unistd.h>

#include <cstdio>
#include <string>

namespace host {
namespace {

constexpr std::uint64_t kBarWidth = 40;

}  // namespace

Progress::Progress(std::uint64_t steps) : steps_(steps), shown_(steps > 1 && isatty(STDERR_FILENO) == 1) {
  finished(0);
}

Progress::~Progress() {
  if (shown_) std::fputs("\r\033[K", stderr);
}

void Progress::finished(std::uint64_t stepsSoFar) {
  if (!shown_) return;
  const auto filled = static_cast<std::size_t>(kBarWidth * stepsSoFar / steps_);
  const std::string bar = std::string(filled, '#') + std::string(kBarWidth - filled, '.');
  std::fprintf(stderr, "\r[%s] %llu of %llu", bar.c_str(), static_cast<unsigned long long>(stepsSoFar),
               static_cast<unsigned long long>(steps_));
  std::fflush(stderr);
}

}  // namespace host
