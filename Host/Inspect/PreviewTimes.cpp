// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PreviewTimes.h"

#include "Host/Rendering/FrameTimes.h"

#include <utility>
#include <vector>

namespace host {
namespace {

PlaybackTimes unevenTimes(const PreviewOpened& opened) {
  const double unit = valueOf(opened.timeBase);
  const std::int64_t first = opened.shown.front();
  std::vector<double> starts;
  starts.reserve(opened.shown.size());
  for (const std::int64_t shown : opened.shown) starts.push_back(static_cast<double>(shown - first) * unit);
  return PlaybackTimes::uneven(std::move(starts), static_cast<double>(opened.end - first) * unit, opened.rate);
}

}  // namespace

PlaybackTimes playbackTimesOf(const PreviewOpened& opened) {
  switch (opened.timing) {
    case PreviewOpened::Timing::Still:
      return {};
    case PreviewOpened::Timing::Steps:
      return PlaybackTimes::transition(opened.rate);
    case PreviewOpened::Timing::Frames:
      break;
  }
  PlaybackTimes times = opened.shown.empty() ? PlaybackTimes::even(opened.count, opened.rate) : unevenTimes(opened);
  times.setFirstNumber(opened.firstNumber);
  if (opened.timeCode) times.setFirstTimeCode(*opened.timeCode);
  return times;
}

}  // namespace host
