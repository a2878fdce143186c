// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Distance.h"

#include <algorithm>
#include <cmath>

namespace vorto::effects {
namespace {

float distance(CircleShape, float u, float v) {
  return std::sqrt(u * u + v * v);
}

float distance(DiamondShape, float u, float v) {
  return std::abs(u) + std::abs(v);
}

float distance(RectangleShape, float u, float v) {
  return std::abs(u) < std::abs(v) ? std::abs(v) : std::abs(u);
}

}  // namespace

DistanceRow DistanceRow::at(double y, double centerX, double centerY, double unitX, double unitY) {
  const double near = std::clamp(centerX, -1e9, 1e9);  // columns count to 2^31
  const double column = std::floor(near);
  return {static_cast<std::int32_t>(column), static_cast<float>(column + 0.5 - near), static_cast<float>(1 / unitX),
          static_cast<float>((y + 0.5 - centerY) / unitY)};
}

template <class Shape>
void distanceRowScalar(const DistanceRow& row, float* out, std::size_t first, std::size_t count) {
  for (std::size_t i = first; i < count; ++i) {
    const float pixels = static_cast<float>(static_cast<std::int32_t>(i) - row.column) + row.offset;
    out[i] = distance(Shape(), pixels * row.perPixel, row.v);
  }
}

template void distanceRowScalar<CircleShape>(const DistanceRow&, float*, std::size_t, std::size_t);
template void distanceRowScalar<DiamondShape>(const DistanceRow&, float*, std::size_t, std::size_t);
template void distanceRowScalar<RectangleShape>(const DistanceRow&, float*, std::size_t, std::size_t);

}  // namespace vorto::effects
