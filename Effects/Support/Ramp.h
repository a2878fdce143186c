// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace vorto::effects {

// A position that grows evenly along a direction: 0 and 1 on two parallel lines. At the center of pixel (x, y), counted
// from the upper left, it is base + x * perColumn + y * perRow.
struct Ramp {
  double base = 0;
  double perColumn = 0;
  double perRow = 0;

  double rowStart(double y) const { return base + y * perRow; }

  // From a start to an end point in pixels. Points that coincide put everything at position 1, as vector graphics do.
  static Ramp between(double startX, double startY, double endX, double endY);
  // Across a whole image in a direction in degrees, clockwise from left-to-right: 0 at the first corner that a line at
  // right angles to it meets, 1 at the last.
  static Ramp across(double width, double height, double degrees);
};

}  // namespace vorto::effects
