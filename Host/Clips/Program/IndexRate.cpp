// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/IndexRate.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace host {
namespace {

bool isRate(AVRational rate) {
  return rate.num > 0 && rate.den > 0 && av_q2d(rate) < 100000;
}

// Whether every frame stands within a unit of its place, or a quarter of what a frame lasts where units are long.
bool holds(const std::vector<std::int64_t>& times, AVRational timeBase, AVRational rate) {
  const double step = 1 / (av_q2d(rate) * av_q2d(timeBase));
  const double tolerance = std::min(1.01, step / 4);
  for (std::size_t i = 0; i < times.size(); ++i) {
    const double place = static_cast<double>(times[i] - times[0]);
    if (std::abs(place - static_cast<double>(i) * step) > tolerance) return false;
  }
  return true;
}

AVRational averageRate(const std::vector<std::int64_t>& times, AVRational timeBase) {
  AVRational perUnit;
  av_reduce(&perUnit.num, &perUnit.den, static_cast<std::int64_t>(times.size() - 1), times.back() - times.front(),
            1 << 30);
  return av_div_q(perUnit, timeBase);
}

// The rate of broadcasts and cinemas beside another one.
std::optional<AVRational> usualRate(AVRational rate) {
  const int whole = static_cast<int>(std::lround(av_q2d(rate)));
  for (const AVRational usual : {AVRational{whole, 1}, AVRational{whole * 1000, 1001}}) {
    if (whole > 0 && std::abs(av_q2d(usual) / av_q2d(rate) - 1) < 5e-4) return usual;
  }
  return std::nullopt;
}

}  // namespace

FrameRate frameRateOf(const std::vector<std::int64_t>& times, AVRational timeBase, std::span<const AVRational> stated) {
  for (const AVRational rate : stated) {
    if (isRate(rate) && holds(times, timeBase, rate)) return {rate, false};
  }
  if (times.size() < 2) return {};
  const AVRational average = averageRate(times, timeBase);
  if (!isRate(average)) return {{25, 1}, true};
  if (const auto usual = usualRate(average); usual && holds(times, timeBase, *usual)) return {*usual, false};
  return {average, !holds(times, timeBase, average)};
}

}  // namespace host
