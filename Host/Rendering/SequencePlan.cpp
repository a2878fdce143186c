// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/SequencePlan.h"

#include "Host/Rendering/FrameTimes.h"

#include <algorithm>
#include <utility>

namespace host {
namespace {

std::uint32_t frameOf(const FrameRange& there, std::uint32_t wanted, WhenShort whenShort) {
  if (wanted > there.last && whenShort == WhenShort::Loop) {
    return static_cast<std::uint32_t>(there.first + (wanted - there.first) % there.count());
  }
  return std::clamp(wanted, there.first, there.last);
}

}  // namespace

std::optional<WhenShort> whenShortNamed(const std::string& name) {
  if (name == "hold") return WhenShort::Hold;
  if (name == "loop") return WhenShort::Loop;
  if (name == "end") return WhenShort::End;
  return std::nullopt;
}

SequencePlan::SequencePlan(const FrameRange& frames, std::vector<std::optional<FrameRange>> sources,
                           const Wishes& wishes, WhenShort whenShort)
    : frames_(frames), sources_(std::move(sources)), wishes_(wishes), whenShort_(whenShort) {}

PlannedFrame SequencePlan::frame(std::uint64_t index) const {
  PlannedFrame result;
  result.index = index;
  result.number = static_cast<std::uint32_t>(frames_.first + index);
  for (const auto& source : sources_) {
    result.sources.push_back(source ? frameOf(*source, result.number, whenShort_) : 0);
  }
  const double since = static_cast<double>(index) / wishes_.framesPerSecond;
  result.time = wishes_.time.value_or(timeForEffect(wishes_.kind, index, count(), since));
  result.shown = static_cast<std::int64_t>(index);
  return result;
}

Rational SequencePlan::timeBase() const {
  return unitOfRate(wishes_.rate);
}

}  // namespace host
