// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/GimpSegment.h"

#include "Host/Texts/Hsv.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace host {
namespace {

constexpr double kLeastMiddle = 1e-10;

double middleOf(const GimpSegment& segment) {
  return (segment.middle - segment.left) / (segment.right - segment.left);
}

// One half at the middle, straight on both sides.
double linearShare(double t, double middle) {
  if (t <= middle) return middle < kLeastMiddle ? 0 : 0.5 * t / middle;
  return 1 - middle < kLeastMiddle ? 1 : 0.5 + 0.5 * (t - middle) / (1 - middle);
}

// Hues in turns. Counterclockwise they rise; a turn is made where the other end is not above.
double hueBetween(double left, double right, double share, bool rises) {
  double way = right - left;
  if (rises && way <= 0) way += 1;
  if (!rises && way >= 0) way -= 1;
  const double hue = left + way * share;
  return hue - std::floor(hue);
}

bool appendPiece(Ramps& ramps, const GimpSegment& segment, double from, double to) {
  const double length = segment.right - segment.left;
  const auto at = [&](double t) { return t <= 0 ? segment.left : t >= 1 ? segment.right : segment.left + t * length; };
  const Curve curve = [&](double t) { return segment.colorOfShare(segment.shareAt(from + t * (to - from))); };
  return appendCurve(ramps, at(from), at(to), curve);
}

}  // namespace

double GimpSegment::shareAt(double t) const {
  const double at = middleOf(*this);
  const double linear = linearShare(t, at);
  switch (blending) {
    case Linear:
      break;
    case Curved:
      return std::pow(t, std::log(0.5) / std::log(std::clamp(at, kLeastMiddle, 1 - kLeastMiddle)));
    case Sinusoidal:
      return (1 - std::cos(std::numbers::pi * linear)) / 2;
    case SphereIncreasing:
      return std::sqrt(std::max(0.0, 1 - (1 - linear) * (1 - linear)));
    case SphereDecreasing:
      return 1 - std::sqrt(std::max(0.0, 1 - linear * linear));
    case Step:
      return t >= at ? 1 : 0;
  }
  return linear;
}

Rgba GimpSegment::colorOfShare(double share) const {
  Rgba color = straightBlend(leftColor, rightColor, share);
  if (coloring == Rgb) return color;
  // The ends are exactly what the neighbors have there.
  if (share == 0) return leftColor;
  if (share == 1) return rightColor;
  const Hsv from = hsvOfRgb({leftColor[0], leftColor[1], leftColor[2]});
  const Hsv to = hsvOfRgb({rightColor[0], rightColor[1], rightColor[2]});
  const double hue = hueBetween(from.hue, to.hue, share, coloring == HsvCounterClockwise);
  const auto rgb = rgbOfHsv(
      {hue, from.saturation + share * (to.saturation - from.saturation), from.value + share * (to.value - from.value)});
  std::ranges::copy(rgb, color.begin());
  return color;
}

bool appendSegment(Ramps& ramps, const GimpSegment& segment) {
  if (!(segment.right > segment.left)) return true;
  if (segment.blending == GimpSegment::Step) {
    // The middle has the right color, where elsewhere the position of a jump has the left one.
    const double last = std::max(segment.left, std::nextafter(segment.middle, 0.0));
    appendRamp(ramps, {segment.left, last, segment.leftColor, segment.leftColor});
    appendRamp(ramps, {last, segment.right, segment.rightColor, segment.rightColor});
    return true;
  }
  const double middle = middleOf(segment);
  const bool isBent = segment.blending != GimpSegment::Curved && middle != 0.5 && middle > 0 && middle < 1;
  if (!isBent) return appendPiece(ramps, segment, 0, 1);
  return appendPiece(ramps, segment, 0, middle) && appendPiece(ramps, segment, middle, 1);
}

}  // namespace host
