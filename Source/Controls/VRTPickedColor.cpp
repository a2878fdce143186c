// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTPickedColor.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double kLevels = 255;

double limited(double value) {
  return value > 1 ? 1 : value > 0 ? value : 0;
}

// Of the pure hue: a component is 1 for a third of the turn around its own hue and falls to 0 over a sixth on both
// sides.
double pureComponent(double hue, double own) {
  double distance = std::abs(hue - own);
  distance = std::min(distance, 1 - distance);
  return std::clamp(2 - 6 * distance, 0.0, 1.0);
}

NSColor colorAt(double hue, double saturation, double value) {
  const auto component = [&](double own) { return value * (1 - saturation * (1 - pureComponent(hue, own))); };
  return NSColor::colorWithCalibratedRed(component(0), component(1.0 / 3), component(2.0 / 3), 1);
}

double hueOf(double red, double green, double blue, double largest, double range) {
  double sixths = 0;
  if (largest == red) {
    sixths = (green - blue) / range;
  } else if (largest == green) {
    sixths = 2 + (blue - red) / range;
  } else {
    sixths = 4 + (red - green) / range;
  }
  return (sixths < 0 ? sixths + 6 : sixths) / 6;
}

}  // namespace

void VRTPickedColor::setColor(const NSColor& color) {
  color_ = color;
  const double red = limited(color.redComponent());
  const double green = limited(color.greenComponent());
  const double blue = limited(color.blueComponent());
  const double largest = std::max({red, green, blue});
  const double range = largest - std::min({red, green, blue});
  value_ = largest;
  if (largest > 0) saturation_ = range / largest;
  if (range > 0) hue_ = hueOf(red, green, blue, largest, range);
}

void VRTPickedColor::set(double hue, double saturation, double value) {
  hue_ = limited(hue);
  saturation_ = limited(saturation);
  value_ = limited(value);
  color_ = colorAt(hue_, saturation_, value_);
}

double VRTPickedColor::number(VRTColorComponent component) const {
  switch (component) {
    case VRTColorComponent::Red:
    case VRTColorComponent::Gray:
      return limited(color_.redComponent()) * kLevels;
    case VRTColorComponent::Green:
      return limited(color_.greenComponent()) * kLevels;
    case VRTColorComponent::Blue:
      return limited(color_.blueComponent()) * kLevels;
    case VRTColorComponent::Hue:
      return hue_ * 360;
    case VRTColorComponent::Saturation:
      return saturation_ * 100;
    case VRTColorComponent::Value:
      return value_ * 100;
  }
  return 0;
}

void VRTPickedColor::setNumber(VRTColorComponent component, double number) {
  std::array<double, 3> rgb{color_.redComponent(), color_.greenComponent(), color_.blueComponent()};
  switch (component) {
    case VRTColorComponent::Red:
    case VRTColorComponent::Green:
    case VRTColorComponent::Blue:
      rgb.at(std::size_t(component)) = number / kLevels;
      break;
    case VRTColorComponent::Gray:
      rgb.fill(number / kLevels);
      break;
    case VRTColorComponent::Hue:
      return set(number / 360, saturation_, value_);
    case VRTColorComponent::Saturation:
      return set(hue_, number / 100, value_);
    case VRTColorComponent::Value:
      return set(hue_, saturation_, number / 100);
  }
  setColor(NSColor::colorWithCalibratedRed(rgb[0], rgb[1], rgb[2], 1));
}

int VRTLevelOfComponent(double component) {
  return int(limited(component) * kLevels + 0.5 + 1e-7);
}

QRgb VRTLevelsOfColor(const NSColor& color) {
  return qRgb(VRTLevelOfComponent(color.redComponent()), VRTLevelOfComponent(color.greenComponent()),
              VRTLevelOfComponent(color.blueComponent()));
}

QString VRTHexOfColor(const NSColor& color) {
  return QColor(VRTLevelsOfColor(color)).name();
}

std::optional<NSColor> VRTColorOfHex(const QString& text, int fewestDigits) {
  QString digits = text.trimmed();
  if (digits.startsWith('#')) digits.remove(0, 1);
  const auto isDigit = [](QChar c) { return QStringLiteral("0123456789abcdefABCDEF").contains(c); };
  if (!std::all_of(digits.begin(), digits.end(), isDigit)) return std::nullopt;
  if ((digits.size() != 6 && digits.size() != 3) || digits.size() < fewestDigits) return std::nullopt;
  const qsizetype each = digits.size() / 3;
  const auto component = [&](qsizetype at) {
    const QString own = digits.mid(at * each, each);
    return (each == 2 ? own : own + own).toInt(nullptr, 16) / kLevels;
  };
  return NSColor::colorWithCalibratedRed(component(0), component(1), component(2), 1);
}
