// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

namespace vorto::effects {

// What lies equally far from the center: the pixels of a circle, a square on its corner, a rectangle. With u and v the
// distances along rows and columns, each in a unit of its own, the distance is the square root of u u + v v, |u| + |v|,
// and the larger of |u| and |v|.
struct CircleShape {};
struct DiamondShape {};
struct RectangleShape {};

// A row of pixels and the center.
struct DistanceRow {
  std::int32_t column = 0;  // the one in which the center lies, which may be outside the image
  float offset = 0;         // from the center to the middle of that column, in pixels: no more than 1/2 either way
  float perPixel = 0;       // what a pixel along the row adds to u
  float v = 0;

  // `centerX` and `centerY` in pixels from the upper left, finite; columns farther than 1e9 count as that far.
  static DistanceRow at(double y, double centerX, double centerY, double unitX, double unitY);
};

// The distances of `count` pixels, from the first of the row on, in single precision.
template <class Shape>
void distanceRow(const DistanceRow& row, float* out, std::size_t count);

// The definition, from the pixel `first` on.
template <class Shape>
void distanceRowScalar(const DistanceRow& row, float* out, std::size_t first, std::size_t count);

}  // namespace vorto::effects
