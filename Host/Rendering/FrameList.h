// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace host {

// Which frames of a plan are rendered, ascending. It takes memory for the gaps between them, not for the frames.
class FrameList {
 public:
  FrameList() = default;
  FrameList(std::uint64_t first, std::uint64_t count) : count_(count) {
    if (count > 0) runs_.push_back({first, 0});
  }

  std::uint64_t count() const { return count_; }
  bool isEmpty() const { return count_ == 0; }

  // Above all that are in it.
  void append(std::uint64_t index) {
    if (runs_.empty() || index != indexIn(runs_.back(), count_)) runs_.push_back({index, count_});
    ++count_;
  }

  std::uint64_t operator[](std::uint64_t place) const {  // below count()
    const auto behind = std::ranges::upper_bound(runs_, place, {}, &Run::place);
    return indexIn(behind[-1], place);
  }
  std::uint64_t placeOf(std::uint64_t index) const {  // of one that is in it
    const auto behind = std::ranges::upper_bound(runs_, index, {}, &Run::first);
    return behind[-1].place + (index - behind[-1].first);
  }

 private:
  // Frames without a gap: its first, and how many of the list stand before it.
  struct Run {
    std::uint64_t first = 0;
    std::uint64_t place = 0;
  };
  static std::uint64_t indexIn(const Run& run, std::uint64_t place) { return run.first + (place - run.place); }

  std::vector<Run> runs_;
  std::uint64_t count_ = 0;
};

}  // namespace host
