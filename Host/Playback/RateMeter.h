// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <deque>

namespace host {

// How often in a second something happens, over the last second. Times are in seconds and do not go back.
class RateMeter {
 public:
  void restart(double now);
  void count(double now);
  double rate(double now) const;  // 0 until a tenth of a second is over

 private:
  double began_ = 0;
  std::deque<double> times_;  // of the last second
};

}  // namespace host
