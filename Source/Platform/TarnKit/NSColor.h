// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <QColor>
#include <memory>

class NSImage;

// A color in red, green, blue and alpha from 0 to 1, not premultiplied, or a pattern. A value; "no color" is an empty
// std::optional. Components are kept as given and limited only where they are drawn.
class TARN_EXPORT NSColor {
 public:
  NSColor() = default;  // opaque black
  // A color of these components.
  static NSColor colorWithCalibratedRed(double red, double green, double blue, double alpha);
  // Repeats the image from the view's origin, one image pixel a point. A null image fills nothing.
  static NSColor colorWithPatternImage(std::shared_ptr<NSImage> image);
  static NSColor fromQColor(const QColor& color);

  // Of a pattern: 0, 0, 0 and 1.
  double redComponent() const { return red_; }
  double greenComponent() const { return green_; }
  double blueComponent() const { return blue_; }
  double alphaComponent() const { return alpha_; }
  void getRed(double* red, double* green, double* blue, double* alpha) const;  // each may be null

  // Makes it the color that NSBezierPath fills and strokes with, until drawRect ends. Does nothing outside drawRect.
  void set() const;

  QColor toQColor() const;  // limited to 0 to 1; NaN counts as 0

 private:
  double red_ = 0;
  double green_ = 0;
  double blue_ = 0;
  double alpha_ = 1;
  bool pattern_ = false;
  std::shared_ptr<NSImage> image_;
};
