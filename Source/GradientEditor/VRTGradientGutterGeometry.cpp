// SPDX-License-Identifier: BSD-3-Clause
#include "GradientEditor/VRTGradientGutterGeometry.h"

namespace {

constexpr double kMarkerWidth = 11;
constexpr double kMarkerHeight = 14;
constexpr double kStripHeight = 13;

NSRect markerAt(double x) {
  return NSMakeRect(x - 5, 0, kMarkerWidth, kMarkerHeight);
}

}  // namespace

[[gnu::noinline]] double VRTSinglePrecision(double value) {
  return static_cast<double>(static_cast<float>(value));
}

NSRect VRTGradientGutterGeometry::sampleMarker(double position) const {
  return markerAt(xOfPosition(position));
}

NSRect VRTGradientGutterGeometry::swatch(double position) const {
  return NSMakeRect(xOfPosition(position) - 3, 2, 7, 7);
}

NSRect VRTGradientGutterGeometry::middleMarker(double start, double end, double middle) const {
  const double position = positionOfMiddle(start, end, middle);
  return markerAt(xOfPosition(VRTSinglePrecision(position)));
}

NSRect VRTGradientGutterGeometry::strip() const {
  return NSMakeRect(bounds_.origin.x + 3, bounds_.origin.y + kStripBottom, bounds_.size.width - 6, kStripHeight);
}

bool VRTGradientGutterGeometry::dragIsOnGutter(double position, double rise) const {
  const NSRect dragged = NSMakeRect(bounds_.origin.x + position, rise, kMarkerWidth, kMarkerHeight);
  const NSRect gutter = NSMakeRect(bounds_.origin.x + 3, bounds_.origin.y, bounds_.size.width - 6, kStripHeight);
  return NSIntersectsRect(dragged, gutter);
}
