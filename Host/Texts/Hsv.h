// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <array>
#include <cmath>

namespace host {

// The hexcone, all from 0 to 1. VortoColor's conversions leave hue 360 out and are of single precision.
struct Hsv {
  double hue = 0;  // in turns
  double saturation = 0;
  double value = 0;
};

inline Hsv hsvOfRgb(const std::array<double, 3>& rgb) {
  const double most = std::max({rgb[0], rgb[1], rgb[2]});
  const double range = most - std::min({rgb[0], rgb[1], rgb[2]});
  if (range <= 0) return {0, 0, most};
  double sextant = 0;
  if (most == rgb[0]) {
    sextant = (rgb[1] - rgb[2]) / range;
  } else if (most == rgb[1]) {
    sextant = 2 + (rgb[2] - rgb[0]) / range;
  } else {
    sextant = 4 + (rgb[0] - rgb[1]) / range;
  }
  const double hue = sextant / 6;
  return {hue < 0 ? hue + 1 : hue, range / most, most};
}

inline std::array<double, 3> rgbOfHsv(const Hsv& hsv) {
  const auto component = [&](double offset) {
    const double k = std::fmod(offset + 6 * (hsv.hue - std::floor(hsv.hue)), 6);
    return hsv.value - hsv.value * hsv.saturation * std::max(0.0, std::min({k, 4 - k, 1.0}));
  };
  return {component(5), component(3), component(1)};
}

}  // namespace host
