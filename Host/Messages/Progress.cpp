// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/Progress.h"

#include <unistd.h>

#include <cstdio>
#include <string>

namespace host {
namespace {

constexpr std::uint64_t kBarWidth = 30;
constexpr std::chrono::milliseconds kPause{100};

const Progress* shown = nullptr;
bool areLinesWanted = false;

void erase() {
  std::fputs("\r\033[K", stderr);
}

}  // namespace

void Progress::tellInLines() {
  areLinesWanted = true;
}

Progress::Progress(std::uint64_t steps)
    : steps_(steps), isInLines_(areLinesWanted), isShown_(!isInLines_ && steps > 1 && isatty(STDERR_FILENO) == 1) {
  if (!isShown_ && !isInLines_) return;
  if (isShown_) shown = this;
  drawn_ = StepRate::Clock::now();
  rate_.note(0, drawn_);
  draw();
}

Progress::~Progress() {
  if (!isShown_) return;
  shown = nullptr;
  erase();
}

void Progress::finished(std::uint64_t stepsSoFar) {
  if (!isShown_ && !isInLines_) return;
  const auto now = StepRate::Clock::now();
  done_ = stepsSoFar;
  rate_.note(stepsSoFar, now);
  if (now - drawn_ < kPause && stepsSoFar < steps_) return;
  drawn_ = now;
  draw();
}

void Progress::draw() const {
  if (isInLines_) {
    std::printf("%llu %llu\n", static_cast<unsigned long long>(done_), static_cast<unsigned long long>(steps_));
    std::fflush(stdout);
    return;
  }
  const auto filled = static_cast<std::size_t>(kBarWidth * done_ / steps_);
  const std::string bar = std::string(filled, '#') + std::string(kBarWidth - filled, '.');
  const std::string rate = rateText(rate_.perSecond(), steps_ - done_);
  std::fprintf(stderr, "\r[%s] %llu of %llu%s%s\033[K", bar.c_str(), static_cast<unsigned long long>(done_),
               static_cast<unsigned long long>(steps_), rate.empty() ? "" : ", ", rate.c_str());
  std::fflush(stderr);
}

Progress::Aside::Aside() {
  if (shown) erase();
}

Progress::Aside::~Aside() {
  if (shown) shown->draw();
}

}  // namespace host
