// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"

// Where the handles of a levels gutter stand, and what their movement means.
//
// The track of the values 0 to 1 begins 5 points from the view's left edge and ends 5 from its right one. Handles are
// 11 x 9 points at the bottom of the view.
class VRTHistogramGutterGeometry {
 public:
  explicit VRTHistogramGutterGeometry(NSRect bounds) : bounds_(bounds) {}

  double centreOfHandle(double value) const;
  NSRect handle(double value) const;
  // The difference of values between two places on the track. Without a track it is infinite or no number.
  double valuesOfDistance(double points) const;

 private:
  double trackWidth() const;
  NSRect bounds_;
};

// 0 for what is below it, 1 for what is not at most 1, NaN included.
double VRTHistogramClampToUnit(double value);

constexpr double VRTHistogramLargestGamma = 5;

// Where the handle of a gamma stands between black and white: in the middle for 1.
double VRTHistogramPositionOfGamma(double black, double white, double gamma);
// The gamma of a place, 0 to 5: 5 at and beyond black, 0 at and beyond white; where the two are equal, 0 to their right
// and 5 elsewhere.
double VRTHistogramGammaOfPosition(double black, double white, double position);
