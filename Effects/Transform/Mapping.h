// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace vorto::effects {

// How an image is moved: scaled about a point, turned about it, then shifted.
struct Movement {
  double shiftX = 0, shiftY = 0;    // pixels, to the right and down
  double degrees = 0;               // clockwise
  double scaleX = 1, scaleY = 1;    // negative ones mirror
  double anchorX = 0, anchorY = 0;  // the point, in pixels from the upper left corner
};

// From places in the result to those in the image: x' = originX + x xPerX + y xPerY, and so on. Places are in pixels
// from the upper left corner; the center of the first pixel is (0.5, 0.5).
struct Mapping {
  double originX, originY;
  double xPerX, xPerY, yPerX, yPerY;

  // The scales must not be 0. Quarter turns are exact.
  static Mapping backFrom(const Movement& movement);

  double x(double atX, double atY) const { return originX + atX * xPerX + atY * xPerY; }
  double y(double atX, double atY) const { return originY + atX * yPerX + atY * yPerY; }
};

// The part of a row of `count` steps on which `start + i step` lies between two bounds, give or take a step: whole
// numbers `first` up to `end`, equal when there is none.
struct Stretch {
  double first, end;

  void limit(double start, double step, double low, double high);
};

}  // namespace vorto::effects
