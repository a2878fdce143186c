// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/RateMeter.h"

#include <algorithm>

namespace host {

void RateMeter::restart(double now) {
  began_ = now;
  times_.clear();
}

void RateMeter::count(double now) {
  times_.push_back(now);
  while (times_.front() <= now - 1) times_.pop_front();
}

double RateMeter::rate(double now) const {
  const double span = std::min(now - began_, 1.0);
  if (span < 0.1) return 0;
  const auto since = std::upper_bound(times_.begin(), times_.end(), now - span);
  return static_cast<double>(times_.end() - since) / span;
}

}  // namespace host
