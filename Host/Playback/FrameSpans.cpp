// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/FrameSpans.h"

#include <iterator>

namespace host {

std::optional<FrameSpan> FrameSpans::around(std::uint64_t frame) const {
  auto after = lasts_.upper_bound(frame);
  if (after == lasts_.begin()) return std::nullopt;
  const auto& [first, last] = *std::prev(after);
  if (frame > last) return std::nullopt;
  return FrameSpan{first, last};
}

void FrameSpans::add(std::uint64_t frame) {
  if (contains(frame)) return;
  std::uint64_t first = frame;
  std::uint64_t last = frame;
  if (const auto after = lasts_.find(frame + 1); after != lasts_.end()) {
    last = after->second;
    lasts_.erase(after);
  }
  if (frame > 0) {
    if (const auto before = around(frame - 1)) first = before->first;
  }
  lasts_[first] = last;
}

void FrameSpans::remove(std::uint64_t frame) {
  const auto span = around(frame);
  if (!span) return;
  lasts_.erase(span->first);
  if (span->first < frame) lasts_[span->first] = frame - 1;
  if (span->last > frame) lasts_[frame + 1] = span->last;
}

std::vector<FrameSpan> FrameSpans::all() const {
  std::vector<FrameSpan> spans;
  spans.reserve(lasts_.size());
  for (const auto& [first, last] : lasts_) spans.push_back({first, last});
  return spans;
}

}  // namespace host
