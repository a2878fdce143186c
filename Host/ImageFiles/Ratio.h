// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

namespace host {

// The simplest whole numbers, none above `largest`, whose ratio is the value, or as near to it as they come. The value
// is positive, and neither it nor its inverse above `largest`.
inline std::array<std::uint32_t, 2> ratioOf(double value, std::uint32_t largest) {
  std::array<double, 2> before{0, 1};
  std::array<double, 2> ratio{1, 0};
  for (double rest = value; ratio[1] == 0 || ratio[0] / ratio[1] != value;) {
    const double whole = std::floor(rest);
    const std::array<double, 2> next{whole * ratio[0] + before[0], whole * ratio[1] + before[1]};
    if (std::max(next[0], next[1]) > largest) break;
    before = std::exchange(ratio, next);
    if (rest == whole) break;
    rest = 1 / (rest - whole);
  }
  return {static_cast<std::uint32_t>(ratio[0]), static_cast<std::uint32_t>(ratio[1])};
}

}  // namespace host
