// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/TarnKit/NSColor.h"

#include <QString>
#include <optional>

// What people read and set of a color as a number: red, green, blue and gray from 0 to 255, the hue in degrees from 0
// to 360, saturation and value in percent.
enum class VRTColorComponent { Red, Green, Blue, Gray, Hue, Saturation, Value };

// The color that a picker has, and where it lies by hue, saturation and value, each from 0 to 1.
//
// A color that is set stays as it is, to the last digit and beyond the range of 0 to 1; its place is that of its
// nearest neighbour within. A gray has no hue of its own and black no saturation: they keep those of the color before.
class VRTPickedColor {
 public:
  const NSColor& color() const { return color_; }
  double hue() const { return hue_; }
  double saturation() const { return saturation_; }
  double value() const { return value_; }

  void setColor(const NSColor& color);
  void set(double hue, double saturation, double value);  // limited to 0 to 1; NaN counts as 0

  double number(VRTColorComponent component) const;
  // The other components stay as they are, to the last digit. Gray makes a gray.
  void setNumber(VRTColorComponent component, double number);

 private:
  NSColor color_;
  double hue_ = 0;
  double saturation_ = 0;
  double value_ = 0;
};

// The nearest of 256 levels, as tables and strips of gradients round; limited to 0 to 255, NaN is 0.
int VRTLevelOfComponent(double component);
QRgb VRTLevelsOfColor(const NSColor& color);  // opaque

// "#1e90ff".
QString VRTHexOfColor(const NSColor& color);
// Six digits, or three where so few are enough, with or without the number sign, spaces around them; empty for any
// other text.
std::optional<NSColor> VRTColorOfHex(const QString& text, int fewestDigits = 3);
