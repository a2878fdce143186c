// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTColorSwatch.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kGrayColumn = 16;
constexpr QSize kColorSize(kGrayColumn + 216, 145);
constexpr QSize kGrayscaleSize(256, 32);

// Hue in turns at full saturation and value: each component is 1 for a third of the turn around its own hue and falls
// to 0 over a sixth on both sides.
double component(double hue, double own) {
  double distance = std::abs(hue - own);
  distance = std::min(distance, 1 - distance);
  return std::clamp(2 - 6 * distance, 0.0, 1.0);
}

NSColor gray(double value) {
  return NSColor::colorWithCalibratedRed(value, value, value, 1);
}

// From white (0) over the pure hue (0.5) to black (1).
NSColor shadeOfHue(double hue, double shade) {
  const double white = std::max(0.0, 1 - 2 * shade);
  const double light = std::min(1.0, 2 - 2 * shade);
  const auto mixed = [&](double own) { return light * (white + (1 - white) * component(hue, own)); };
  return NSColor::colorWithCalibratedRed(mixed(0), mixed(1.0 / 3), mixed(2.0 / 3), 1);
}

}  // namespace

QSize VRTColorSwatch::size() const {
  return kind_ == Kind::color ? kColorSize : kGrayscaleSize;
}

QPointF VRTColorSwatch::limited(QPointF place) const {
  return {std::clamp(place.x(), 0.0, size().width() - 1.0), std::clamp(place.y(), 0.0, size().height() - 1.0)};
}

NSColor VRTColorSwatch::colorAt(QPointF place) const {
  const QPointF at = limited(place);
  if (kind_ == Kind::grayscale) return gray(at.x() / (kGrayscaleSize.width() - 1));
  const double down = at.y() / (kColorSize.height() - 1);
  if (at.x() < kGrayColumn) return gray(1 - down);
  return shadeOfHue((at.x() - kGrayColumn) / (kColorSize.width() - kGrayColumn), down);
}

QPointF VRTColorSwatch::placeOf(const NSColor& color) const {
  const QColor visible = color.toQColor();
  const double bottom = size().height() - 1;
  if (kind_ == Kind::grayscale) return {visible.redF() * (kGrayscaleSize.width() - 1), bottom / 2};
  const double saturation = visible.hsvSaturationF();
  const double value = visible.valueF();
  if (!(saturation > 0) || visible.hsvHueF() < 0) return {kGrayColumn / 2.0, (1 - value) * bottom};
  const double shade = value < 1 ? 1 - value / 2 : saturation / 2;
  return {kGrayColumn + visible.hsvHueF() * (kColorSize.width() - kGrayColumn), shade * bottom};
}

QImage VRTColorSwatch::image(double devicePixelRatio) const {
  const int width = int(std::lround(size().width() * devicePixelRatio));
  const int height = int(std::lround(size().height() * devicePixelRatio));
  QImage image(width, height, QImage::Format_RGB32);
  for (int y = 0; y < height; ++y) {
    auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < width; ++x) {
      row[x] = colorAt(QPointF(x / devicePixelRatio, y / devicePixelRatio)).toQColor().rgb();
    }
  }
  image.setDevicePixelRatio(devicePixelRatio);
  return image;
}
