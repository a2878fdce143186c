// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <string>

namespace host {

// How fast steps of long work are done, over the last seconds of it.
class StepRate {
 public:
  using Clock = std::chrono::steady_clock;

  // So many steps are done. Times ascend. What is no more than before says nothing.
  void note(std::uint64_t steps, Clock::time_point time);
  // In a second; 0 as long as nothing can be said.
  double perSecond() const;

 private:
  struct Noted {
    std::uint64_t steps;
    Clock::time_point time;
  };
  std::deque<Noted> noted_;  // the first is the last one from before those seconds
};

// "12.3 frames/s, 0:42 left", "0.05 frames/s, 2:07:00 left"; empty for a rate of 0.
std::string rateText(double perSecond, std::uint64_t stepsLeft);

}  // namespace host
