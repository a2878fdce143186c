// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"

// The geometry of a gradient gutter: pairs of inverse functions between positions (0 to 1 along the gradient) and
// points of the view, and the rectangles that are drawn and hit.
//
// A gutter has two bands. Markers stand in y 0 to 14, the strip in y 13 to 26; the view is flipped or not so that the
// strip faces the preview. The track, on which positions lie, is 5 points shorter than the view at both ends.
class VRTGradientGutterGeometry {
 public:
  explicit VRTGradientGutterGeometry(NSRect viewBounds) : bounds_(viewBounds) {}

  static constexpr double kStripBottom = 13;  // where the strip begins; below it is the marker band

  double trackLeft() const { return bounds_.origin.x + 5; }
  double trackSpan() const { return bounds_.size.width - 10; }

  // Along the track. A track without length has everything at position 0.
  double xOfPosition(double position) const { return trackSpan() * position + trackLeft(); }
  double positionOfX(double x) const { return positionsOfDistance(x - trackLeft()); }
  double positionsOfDistance(double points) const { return trackSpan() > 0 ? points / trackSpan() : 0; }

  // Within a segment: a middle is the fraction of the segment at which its middle point lies. A segment without length
  // has no distances in it: they count as 0.
  static double positionOfMiddle(double start, double end, double middle) { return start + (end - start) * middle; }
  static double middleOfPosition(double start, double end, double position) {
    return middlesOfDistance(start, end, position - start);
  }
  static double middlesOfDistance(double start, double end, double positions) {
    return end == start ? 0 : positions / (end - start);
  }

  NSRect sampleMarker(double position) const;
  NSRect swatch(double position) const;  // the colored square inside a sample marker
  // The position of a middle point is rounded to single precision before it is placed.
  NSRect middleMarker(double start, double end, double middle) const;
  NSRect strip() const;

  // Whether a dragged sample still is on the gutter. `position` is where the drag would put it, unclamped, and `rise`
  // how far the pointer has moved in y since it went down. The position is taken for points as it is, not scaled by the
  // track: so the rise alone decides, out from 13 upwards and from -14 downwards.
  bool dragIsOnGutter(double position, double rise) const;

 private:
  NSRect bounds_;
};

// Rounded to single precision. Not inline: where two such conversions stand side by side, GCC 12 vectorises them and
// drops the rounding.
double VRTSinglePrecision(double value);

// 0 to 1; NaN gives 0.
constexpr double VRTClampToUnit(double value) {
  return value > 1 ? 1 : value > 0 ? value : 0;
}
