// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/Timeline.h"

#include "Host/Commands/OptionValues.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace host {
namespace {

constexpr std::uint64_t kTransitionSteps = 1000;
constexpr double kTransitionSeconds = 2;

}  // namespace

Timeline Timeline::ofSequence(EffectKind kind, const FrameRange& frames, double rate) {
  Timeline timeline;
  timeline.kind_ = kind;
  timeline.frames_ = frames;
  timeline.isSequence_ = true;
  timeline.count_ = frames.count();
  timeline.rate_ = rate;
  return timeline;
}

Timeline Timeline::ofTransition(double rate) {
  Timeline timeline;
  timeline.kind_ = EffectKind::Transition;
  timeline.count_ = kTransitionSteps + 1;
  const double stride = static_cast<double>(kTransitionSteps) / (rate * kTransitionSeconds);
  timeline.stride_ = static_cast<std::uint64_t>(std::clamp(std::round(stride), 1.0, kTransitionSteps / 2.0));
  timeline.rate_ = rate;
  return timeline;
}

std::uint32_t Timeline::frameAt(std::uint64_t position) const {
  return isSequence_ ? static_cast<std::uint32_t>(frames_.first + position) : 0;
}

double Timeline::timeAt(std::uint64_t position) const {
  if (isSequence_) return timeOfFrame(kind_, frames_, frames_.first + position, rate_);
  return count_ > 1 ? static_cast<double>(position) / static_cast<double>(count_ - 1) : 0;
}

std::string Timeline::labelAt(std::uint64_t position) const {
  if (isSequence_) return std::to_string(frameAt(position));
  char text[32];
  std::snprintf(text, sizeof text, "%llu.%02llu", static_cast<unsigned long long>(position / kTransitionSteps),
                static_cast<unsigned long long>(position % kTransitionSteps / 10));
  return text;
}

std::uint64_t Timeline::next(std::uint64_t position) const {
  if (position + 1 >= count_) return 0;
  return std::min(position + stride_, count_ - 1);
}

}  // namespace host
