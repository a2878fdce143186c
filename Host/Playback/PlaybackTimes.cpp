// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/PlaybackTimes.h"

#include "Host/Clips/TimeCodes.h"
#include "Host/Rendering/FrameTimes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace host {
namespace {

constexpr std::uint64_t kTransitionSteps = 1000;
constexpr double kTransitionSeconds = 2;
constexpr double kTolerance = 1e-9;       // of a frame
constexpr double kShortestStep = 1e-4;    // seconds
constexpr double kFastestCounted = 60.5;  // frames per second that time codes have numbers for
constexpr std::uint32_t kDropFrame = 1u << 6;

Rational usable(const Rational& rate) {
  return rate.numerator > 0 && rate.denominator > 0 ? rate : Rational{25, 1};
}

}  // namespace

PlaybackTimes PlaybackTimes::even(std::uint64_t count, const Rational& rate) {
  PlaybackTimes times;
  times.count_ = std::max<std::uint64_t>(count, 1);
  times.rate_ = usable(rate);
  return times;
}

PlaybackTimes PlaybackTimes::uneven(std::vector<double> starts, double end, const Rational& rate) {
  PlaybackTimes times = even(starts.size(), rate);
  starts.push_back(std::max(end, starts.back()));
  times.starts_ = std::move(starts);
  return times;
}

PlaybackTimes PlaybackTimes::transition(const Rational& rate) {
  PlaybackTimes times = even(kTransitionSteps + 1, rate);
  times.isTransition_ = true;
  const double stride = static_cast<double>(kTransitionSteps) / (times.framesPerSecond() * kTransitionSeconds);
  times.stride_ = static_cast<std::uint64_t>(std::clamp(std::round(stride), 1.0, kTransitionSteps / 2.0));
  return times;
}

double PlaybackTimes::framesPerSecond() const {
  return valueOf(rate_);
}

double PlaybackTimes::seconds(std::uint64_t frame) const {
  frame = std::min(frame, count_);
  if (!starts_.empty()) return starts_[frame];
  return static_cast<double>(frame) / static_cast<double>(stride_) * rate_.denominator / rate_.numerator;
}

std::uint64_t PlaybackTimes::frameAt(double seconds) const {
  if (!(seconds > 0)) return 0;
  if (!starts_.empty()) {
    const auto after = std::upper_bound(starts_.begin(), starts_.end() - 1, seconds + kTolerance);
    return static_cast<std::uint64_t>(after - starts_.begin()) - 1;
  }
  const double frame = std::floor(seconds * framesPerSecond() * static_cast<double>(stride_) + 1e3 * kTolerance);
  return frame < static_cast<double>(last()) ? static_cast<std::uint64_t>(frame) : last();
}

double PlaybackTimes::stepSeconds(std::uint64_t frame) const {
  if (starts_.empty()) return 1 / framesPerSecond();
  return std::max(seconds(frame + 1) - seconds(frame), kShortestStep);
}

std::optional<TimeCode> PlaybackTimes::firstTimeCode() const {
  if (isTransition_ || !starts_.empty()) return std::nullopt;
  const double rate = framesPerSecond();
  const bool isOfNtsc = rate_.denominator == 1001 && (rate_.numerator == 30000 || rate_.numerator == 60000);
  const TimeCode first = firstTimeCode_.value_or(TimeCode{isOfNtsc ? kDropFrame : 0, 0});
  if (rate > kFastestCounted || !framesSinceMidnight(first, rate)) return std::nullopt;
  return first;
}

}  // namespace host
