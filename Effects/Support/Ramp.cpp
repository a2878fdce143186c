// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/Ramp.h"

#include <cmath>
#include <numbers>

namespace vorto::effects {

Ramp Ramp::between(double startX, double startY, double endX, double endY) {
  const double dx = endX - startX;
  const double dy = endY - startY;
  const double squaredLength = dx * dx + dy * dy;
  if (!(squaredLength > 0) || !std::isfinite(squaredLength)) return {1, 0, 0};
  const double perColumn = dx / squaredLength;
  const double perRow = dy / squaredLength;
  return {(0.5 - startX) * perColumn + (0.5 - startY) * perRow, perColumn, perRow};
}

Ramp Ramp::across(double width, double height, double degrees) {
  const double angle = std::fmod(degrees, 360.0) * std::numbers::pi / 180;
  const double dx = std::cos(angle);
  const double dy = std::sin(angle);
  const double reach = (std::abs(dx) * width + std::abs(dy) * height) / 2;  // from the center to the last corner
  const double centerX = width / 2;
  const double centerY = height / 2;
  return between(centerX - dx * reach, centerY - dy * reach, centerX + dx * reach, centerY + dy * reach);
}

}  // namespace vorto::effects
