// SPDX-License-Identifier: BSD-3-Clause
#include "GradientEditor/VRTGradientKeyboard.h"

#include "GradientEditor/VRTGradientGutterGeometry.h"

#include <algorithm>
#include <cmath>

bool VRTGradientPositionIsFree(double position, const std::vector<double>& others) {
  return std::none_of(others.begin(), others.end(),
                      [&](double other) { return std::abs(other - position) < VRTGradientFineKeyStep / 2; });
}

double VRTFreeGradientPosition(double from, double target, const std::vector<double>& others) {
  const double aim = VRTClampToUnit(target);
  if (aim == from) return from;
  const double direction = aim > from ? 1 : -1;
  const auto place = [&](int steps) { return aim + direction * steps * VRTGradientFineKeyStep; };
  for (int ahead = 0; place(ahead) >= 0 && place(ahead) <= 1; ++ahead) {
    if (VRTGradientPositionIsFree(place(ahead), others)) return place(ahead);
  }
  for (int back = -1; (place(back) - from) * direction > 0; --back) {
    if (VRTGradientPositionIsFree(place(back), others)) return place(back);
  }
  return from;
}
