// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Playback/FrameSource.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace host {

// A set of frames, kept as the spans that it consists of: no two overlap or touch. A change costs the logarithm of how
// many there are.
class FrameSpans {
 public:
  void add(std::uint64_t frame);
  void remove(std::uint64_t frame);
  void clear() { lasts_.clear(); }
  bool contains(std::uint64_t frame) const { return around(frame).has_value(); }
  std::optional<FrameSpan> around(std::uint64_t frame) const;  // the one that the frame is in
  std::vector<FrameSpan> all() const;                          // ascending

 private:
  std::map<std::uint64_t, std::uint64_t> lasts_;  // by the first frame
};

}  // namespace host
