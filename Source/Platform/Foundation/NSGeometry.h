// SPDX-License-Identifier: BSD-3-Clause
#pragma once

// Points, sizes and rectangles in doubles, in points of a view. The origin of a rectangle is its lower left corner
// unless the view that hands it out says that it is flipped.

// A place.
struct NSPoint {
  double x = 0;
  double y = 0;
};

// A width and a height.
struct NSSize {
  double width = 0;
  double height = 0;
};

// An origin and a size.
struct NSRect {
  NSPoint origin;
  NSSize size;
};

// The rectangle of these values.
constexpr NSRect NSMakeRect(double x, double y, double width, double height) {
  return NSRect{NSPoint{x, y}, NSSize{width, height}};
}

// Half open: points on the left and lower edges are inside, points on the right and upper edges are not.
constexpr bool NSPointInRect(NSPoint point, NSRect rect) {
  return point.x >= rect.origin.x && point.y >= rect.origin.y && point.x < rect.origin.x + rect.size.width &&
         point.y < rect.origin.y + rect.size.height;
}

// True when both rectangles have an area and share some of it; touching edges do not count.
constexpr bool NSIntersectsRect(NSRect a, NSRect b) {
  return a.size.width > 0 && a.size.height > 0 && b.size.width > 0 && b.size.height > 0 &&
         a.origin.x < b.origin.x + b.size.width && b.origin.x < a.origin.x + a.size.width &&
         a.origin.y < b.origin.y + b.size.height && b.origin.y < a.origin.y + a.size.height;
}

// Exactly equal.
constexpr bool NSEqualSizes(NSSize a, NSSize b) {
  return a.width == b.width && a.height == b.height;
}
