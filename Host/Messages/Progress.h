// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Messages/StepRate.h"

#include <cstdint>

namespace host {

// A bar on standard error while many frames are rendered, when that is a terminal; nothing otherwise. With the rate of
// the last seconds and the time that is left; drawn ten times a second at most, erased when it ends. One at a time.
// For programs that run this one it can be lines on standard output instead, as often: how many steps are done, and of
// how many, with a space between.
class Progress {
 public:
  explicit Progress(std::uint64_t steps);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  static void tellInLines();  // of all that begin from now on, also of those with one step

  void finished(std::uint64_t stepsSoFar);

  // Makes room for lines on standard error as long as it lives; the bar comes back behind them.
  class Aside {
   public:
    Aside();
    ~Aside();
    Aside(const Aside&) = delete;
    Aside& operator=(const Aside&) = delete;
  };

 private:
  void draw() const;

  const std::uint64_t steps_;
  const bool isInLines_;
  const bool isShown_;  // as a bar
  std::uint64_t done_ = 0;
  StepRate rate_;
  StepRate::Clock::time_point drawn_;
};

}  // namespace host
