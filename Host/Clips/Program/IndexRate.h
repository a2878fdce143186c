// SPDX-License-Identifier: BSD-3-Clause
#pragma once

extern "C" {
#include <libavutil/rational.h>
}

#include <cstdint>
#include <span>
#include <vector>

namespace host {

struct FrameRate {
  AVRational rate{25, 1};  // frames per second
  bool isUneven = false;
};

// The first of the rates that all frames' times hold to, as far as they can state it; else their average.
FrameRate frameRateOf(const std::vector<std::int64_t>& times, AVRational timeBase, std::span<const AVRational> stated);

}  // namespace host
