// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/Arithmetic.h"

#include <algorithm>
#include <type_traits>

namespace vorto::effects {

// What 1.0 is in a channel, as a float.
template <class Channel>
constexpr float fullOf() {
  return static_cast<float>(kOne<Channel>);
}

// A computed channel as it is stored: integers rounded to the nearest, within 0 and the pixel's alpha, which is within
// 0 to 1.0 itself; floats as they are. Integers must not be computed from NaN.
template <class Channel>
Channel storedChannel(float value, [[maybe_unused]] float alpha) {
  if constexpr (std::is_same_v<Channel, float>) {
    return value;
  } else {
    const float most = std::min(std::max(alpha, 0.0F), fullOf<Channel>());
    return static_cast<Channel>(std::min(std::max(value, 0.0F), most) + 0.5F);
  }
}

}  // namespace vorto::effects
