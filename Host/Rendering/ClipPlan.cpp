// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/ClipPlan.h"

#include "Host/Clips/ClipInfo.h"
#include "Host/Messages/Failure.h"
#include "Host/Rendering/FrameTimes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

namespace host {
namespace {

// Times are sums of rounded ones; frames of no clip are this close.
constexpr double kSameTime = 1e-6;

bool isMoving(const PlayedInput& input) {
  return input.clip || input.sequence;
}

// More than two weeks have at 25 in a second.
constexpr double kMostFrames = 1 << 25;

// The first clip, else the first sequence.
std::size_t leaderOf(const std::vector<PlayedInput>& inputs) {
  const auto clip = std::ranges::find_if(inputs, [](const PlayedInput& input) { return input.clip; });
  const auto leader = clip != inputs.end() ? clip : std::ranges::find_if(inputs, isMoving);
  return static_cast<std::size_t>(leader - inputs.begin());
}

// The frame that is nearest in time, the earlier of two; `at` in seconds since the first.
std::uint64_t nearestFrame(const ClipInfo& clip, double at) {
  std::uint64_t after = 0;
  std::uint64_t end = clip.times.size();
  while (after < end) {  // the first that comes later
    const std::uint64_t middle = after + (end - after) / 2;
    if (clip.seconds(middle) > at + kSameTime) {
      end = middle;
    } else {
      after = middle + 1;
    }
  }
  if (after == 0) return 0;
  if (after == clip.times.size()) return after - 1;
  const double since = at - clip.seconds(after - 1);
  return clip.seconds(after) - at < since - kSameTime ? after : after - 1;
}

}  // namespace

ClipPlan::ClipPlan(std::vector<PlayedInput> inputs, const ClipWishes& wishes)
    : inputs_(std::move(inputs)), wishes_(wishes), leader_(leaderOf(inputs_)) {
  const PlayedInput& leader = inputs_.at(leader_);
  leaderRate_ = leader.clip ? leader.clip->rate : wishes_.sequenceRate.value_or(Rational{25, 1});
  rate_ = wishes_.fps.value_or(leaderRate_);
  const bool isUneven = !wishes_.fps && leader.clip && leader.clip->isUneven;
  timeBase_ = isUneven ? leader.clip->timeBase : unitOfRate(rate_);

  const double duration = wholeDuration();
  std::uint64_t whole = framesOf(leader);
  checkLength(duration);
  if (!followsLeader()) {
    whole = static_cast<std::uint64_t>(std::max(std::llround(duration * valueOf(rate_)), 1LL));
  } else if (duration > durationOf(leader) + kSameTime) {
    whole += static_cast<std::uint64_t>(std::llround((duration - durationOf(leader)) * valueOf(leaderRate_)));
  } else {
    whole = std::max<std::uint64_t>(firstNotBefore(duration, whole), 1);
  }
  choose(whole);
}

// One wild time stamp makes a clip last for centuries.
void ClipPlan::checkLength(double duration) const {
  const double beyond = std::max(duration - durationOf(inputs_[leader_]), 0.0);
  const double frames = followsLeader()
                            ? static_cast<double>(framesOf(inputs_[leader_])) + beyond * valueOf(leaderRate_)
                            : duration * valueOf(rate_);
  if (frames <= kMostFrames) return;
  const auto isLongEnough = [&](const PlayedInput& input) { return isMoving(input) && durationOf(input) >= duration; };
  const auto longest = std::ranges::find_if(inputs_, isLongEnough);
  const std::string path = longest == inputs_.end() ? inputs_[leader_].path : longest->path;
  std::array<char, 96> text{};
  std::snprintf(text.data(), text.size(), ": it lasts %.6g s, which are %.6g frames; a run has at most %.0f", duration,
                frames, kMostFrames);
  throw Failure(ExitCode::Input, "cannot render " + path + text.data());
}

void ClipPlan::choose(std::uint64_t whole) {
  last_ = whole - 1;
  if (wishes_.frames) {
    if (wishes_.frames->last >= whole) {
      throw Failure(ExitCode::Usage,
                    "--frames: there are " + std::to_string(whole) + " frames, 0 to " + std::to_string(whole - 1));
    }
    first_ = wishes_.frames->first;
    last_ = wishes_.frames->last;
    return;
  }
  if (wishes_.start) first_ = firstNotBefore(*wishes_.start, whole);
  const std::uint64_t end =
      wishes_.duration ? firstNotBefore(wishes_.start.value_or(0) + *wishes_.duration, whole) : whole;
  if (first_ >= end) {
    throw Failure(ExitCode::Usage, "--start and --duration leave no frame: all is over after " +
                                       std::to_string(seconds(whole)) + " seconds");
  }
  last_ = end - 1;
}

std::uint64_t ClipPlan::framesOf(const PlayedInput& input) const {
  return input.clip ? input.clip->times.size() : input.sequence->count();
}

double ClipPlan::durationOf(const PlayedInput& input) const {
  if (input.clip) return input.clip->duration();
  return static_cast<double>(input.sequence->count()) / valueOf(wishes_.sequenceRate.value_or(leaderRate_));
}

double ClipPlan::wholeDuration() const {
  double result = durationOf(inputs_[leader_]);
  for (const PlayedInput& input : inputs_) {
    if (!isMoving(input)) continue;
    result =
        wishes_.whenShort == WhenShort::End ? std::min(result, durationOf(input)) : std::max(result, durationOf(input));
  }
  return result;
}

// Of the leader's frames beyond its last one: they go on at its rate.
double ClipPlan::seconds(std::uint64_t frame) const {
  if (!followsLeader()) return static_cast<double>(frame) / valueOf(rate_);
  const PlayedInput& leader = inputs_[leader_];
  if (!leader.clip) return static_cast<double>(frame) / valueOf(leaderRate_);
  const std::uint64_t there = leader.clip->times.size();
  if (frame < there) return leader.clip->seconds(frame);
  return leader.clip->duration() + static_cast<double>(frame - there) / valueOf(leaderRate_);
}

std::int64_t ClipPlan::shown(std::uint64_t frame) const {
  if (timeBase_ == unitOfRate(rate_)) return static_cast<std::int64_t>(frame);
  const ClipInfo& clip = *inputs_[leader_].clip;
  if (frame < clip.times.size()) return clip.times[frame] - clip.times[0];
  return std::llround(seconds(frame) / valueOf(timeBase_));
}

std::uint64_t ClipPlan::firstNotBefore(double at, std::uint64_t whole) const {
  std::uint64_t begin = 0;
  std::uint64_t end = whole;
  while (begin < end) {
    const std::uint64_t middle = begin + (end - begin) / 2;
    if (seconds(middle) >= at - kSameTime) {
      end = middle;
    } else {
      begin = middle + 1;
    }
  }
  return begin;
}

std::uint32_t ClipPlan::sourceOf(const PlayedInput& input, double at) const {
  const double duration = durationOf(input);
  if (wishes_.whenShort == WhenShort::Loop && at >= duration - kSameTime) {
    at = std::max(std::fmod(at + kSameTime, duration) - kSameTime, 0.0);
  }
  if (input.clip) return static_cast<std::uint32_t>(nearestFrame(*input.clip, at));
  const double frame = at * valueOf(wishes_.sequenceRate.value_or(leaderRate_));
  const double nearest = std::ceil(frame - 0.5 - kSameTime);
  const double last = static_cast<double>(input.sequence->count() - 1);
  return input.sequence->first + static_cast<std::uint32_t>(std::clamp(nearest, 0.0, last));
}

// Behind the leader's own frames they go on at its rate.
bool ClipPlan::isEven() const {
  if (timeBase_ == unitOfRate(rate_)) return true;
  const double units = 1 / (valueOf(rate_) * valueOf(timeBase_));
  const std::uint64_t last = std::min<std::uint64_t>(last_, inputs_[leader_].clip->times.size());
  for (std::uint64_t frame = first_ + 1; frame <= last; ++frame) {
    const double expected = units * static_cast<double>(frame - first_);
    if (std::abs(static_cast<double>(shown(frame) - shown(first_)) - expected) > std::max(1.0, units / 4)) return false;
  }
  return true;
}

PlannedFrame ClipPlan::frame(std::uint64_t index) const {
  const std::uint64_t whole = first_ + index;
  PlannedFrame result;
  result.index = index;
  result.number = static_cast<std::uint32_t>(whole);
  for (const PlayedInput& input : inputs_) {
    result.sources.push_back(isMoving(input) ? sourceOf(input, seconds(whole)) : 0);
  }
  result.shown = shown(whole) - shown(first_);
  const double since = static_cast<double>(result.shown) * valueOf(timeBase_);
  result.time = wishes_.time.value_or(timeForEffect(wishes_.kind, index, count(), since));
  return result;
}

}  // namespace host
