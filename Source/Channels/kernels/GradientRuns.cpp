// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/kernels/GradientRuns.h"

#include "Channels/VRTChannelGradientSample.h"

#include <algorithm>
#include <cmath>

namespace vorto::kernels {
namespace {

// Components up to this size neither overflow a float nor, times 255, a 32-bit integer.
constexpr double kLargestTame = 1048576.0;

}  // namespace

GradientRuns::GradientRuns(GradientEntries entries, std::span<const GradientComponent> components, std::uint32_t count)
    : _entries(entries),
      _components(components),
      _count(count),
      _step(gradientStep(count)),
      _run{GradientRun::Rule::unwritten, nullptr, nullptr, entries.empty() ? count : 0} {}

const GradientRun& GradientRuns::runAt(std::uint32_t index) {
  while (_run.end <= index) advance();
  return _run;
}

void GradientRuns::advance() {
  const GradientEntry& left = _entries[_next == 0 ? 0 : _next - 1];
  const bool last = _next == _entries.size();
  const std::uint32_t end = last ? _count : firstIndexBeyond(_entries[_next].position);
  const GradientEntry* right = last || _next == 0 ? nullptr : &_entries[_next];
  ++_next;
  if (end > _run.end) _run = {ruleOf(left, right), &left, right, end};
}

// The estimate is off by a position or two at most: rounding may put it on either side.
std::uint32_t GradientRuns::firstIndexBeyond(double position) const {
  const auto beyond = [&](std::uint32_t i) { return position < static_cast<double>(i) * _step; };
  const double estimate = position * static_cast<double>(_count - 1U);
  std::uint32_t index = _run.end;
  if (!(estimate < static_cast<double>(_count))) {
    index = _count;
  } else if (estimate > static_cast<double>(index)) {
    index = static_cast<std::uint32_t>(estimate);
  }
  while (index < _count && !beyond(index)) ++index;
  while (index > _run.end && beyond(index - 1)) --index;
  return index;
}

GradientRun::Rule GradientRuns::ruleOf(const GradientEntry& left, const GradientEntry* right) const {
  if (!right) return GradientRun::Rule::constant;
  const std::int32_t kind = left.sample.interpolation;
  if (kind == VRTGradientConstant) return GradientRun::Rule::constant;
  if (kind != VRTGradientLinear && kind != VRTGradientSmooth) return GradientRun::Rule::unwritten;
  if (!isTame(left) || !isTame(*right)) return GradientRun::Rule::definition;
  return kind == VRTGradientLinear ? GradientRun::Rule::linear : GradientRun::Rule::smooth;
}

// False for NaN everywhere.
bool GradientRuns::isTame(const GradientEntry& entry) const {
  return std::isfinite(entry.position) && std::ranges::all_of(_components, [&](GradientComponent component) {
           return std::abs(entry.sample.*component) <= kLargestTame;
         });
}

}  // namespace vorto::kernels
