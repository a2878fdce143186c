// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/StepRate.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace host {
namespace {

constexpr std::chrono::seconds kWindow{5};

}  // namespace

void StepRate::note(std::uint64_t steps, Clock::time_point time) {
  if (!noted_.empty() && steps == noted_.back().steps) return;
  noted_.push_back({steps, time});
  while (noted_.size() > 2 && noted_[1].time + kWindow <= time) noted_.pop_front();
}

double StepRate::perSecond() const {
  if (noted_.empty()) return 0;
  const std::chrono::duration<double> seconds = noted_.back().time - noted_.front().time;
  const auto steps = static_cast<double>(noted_.back().steps - noted_.front().steps);
  return seconds.count() > 0 ? steps / seconds.count() : 0;
}

std::string rateText(double perSecond, std::uint64_t stepsLeft) {
  if (!(perSecond > 0)) return "";
  const double exact = std::ceil(static_cast<double>(stepsLeft) / perSecond);
  const auto seconds = static_cast<unsigned long long>(std::fmin(exact, 359999));  // 99:59:59
  std::array<char, 64> rate{};
  std::array<char, 64> left{};
  std::snprintf(rate.data(), rate.size(), perSecond < 1 ? "%.2f" : "%.1f", perSecond);
  if (seconds < 3600) {
    std::snprintf(left.data(), left.size(), "%llu:%02llu", seconds / 60, seconds % 60);
  } else {
    std::snprintf(left.data(), left.size(), "%llu:%02llu:%02llu", seconds / 3600, seconds / 60 % 60, seconds % 60);
  }
  return std::string(rate.data()) + " frames/s, " + left.data() + " left";
}

}  // namespace host
