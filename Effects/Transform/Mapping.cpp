// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Transform/Mapping.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vorto::effects {
namespace {

struct Direction {
  double cosine, sine;
};

Direction directionOf(double degrees) {
  const double turned = std::remainder(degrees, 360.0);
  if (turned == 0) return {1, 0};
  if (turned == 90) return {0, 1};
  if (turned == -90) return {0, -1};
  if (std::abs(turned) == 180) return {-1, 0};
  const double angle = turned * std::numbers::pi / 180;
  return {std::cos(angle), std::sin(angle)};
}

}  // namespace

Mapping Mapping::backFrom(const Movement& movement) {
  const auto [cosine, sine] = directionOf(movement.degrees);
  Mapping mapping{};
  mapping.xPerX = cosine / movement.scaleX;
  mapping.xPerY = sine / movement.scaleX;
  mapping.yPerX = -sine / movement.scaleY;
  mapping.yPerY = cosine / movement.scaleY;
  const double fromX = movement.anchorX + movement.shiftX, fromY = movement.anchorY + movement.shiftY;
  mapping.originX = movement.anchorX - (fromX * mapping.xPerX + fromY * mapping.xPerY);
  mapping.originY = movement.anchorY - (fromX * mapping.yPerX + fromY * mapping.yPerY);
  return mapping;
}

void Stretch::limit(double start, double step, double low, double high) {
  if (step == 0) {
    if (!(start > low && start < high)) end = first;
    return;
  }
  const double a = (low - start) / step, b = (high - start) / step;
  first = std::max(first, std::floor(std::min(a, b)) - 1);
  end = std::max(first, std::min(end, std::ceil(std::max(a, b)) + 1));
}

}  // namespace vorto::effects
