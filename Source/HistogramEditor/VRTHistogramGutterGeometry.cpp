// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramGutterGeometry.h"

#include <cmath>

namespace {

constexpr double kMargin = 5;
constexpr double kHandleWidth = 11;
constexpr double kHandleHeight = 9;

double limited(double value, double largest) {
  if (value < 0) return 0;
  return value <= largest ? value : largest;
}

}  // namespace

double VRTHistogramGutterGeometry::trackWidth() const {
  return bounds_.size.width - 2 * kMargin;
}

double VRTHistogramGutterGeometry::centreOfHandle(double value) const {
  return bounds_.origin.x + kMargin + trackWidth() * value;
}

NSRect VRTHistogramGutterGeometry::handle(double value) const {
  return NSMakeRect(bounds_.origin.x + trackWidth() * value, 0, kHandleWidth, kHandleHeight);
}

double VRTHistogramGutterGeometry::valuesOfDistance(double points) const {
  return points / trackWidth();
}

double VRTHistogramClampToUnit(double value) {
  return limited(value, 1);
}

double VRTHistogramPositionOfGamma(double black, double white, double gamma) {
  return black + (white - black) * std::pow(0.5, gamma);
}

double VRTHistogramGammaOfPosition(double black, double white, double position) {
  const double gamma = std::log10((position - black) / (white - black)) / std::log10(0.5);
  return limited(gamma, VRTHistogramLargestGamma);
}
