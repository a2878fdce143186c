// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSColor.h"

#include "Platform/TarnKit/NSGraphicsContext.h"
#include "Platform/TarnKit/NSImage.h"

#include <QImage>

namespace {

// A NaN fails the first comparison and counts as 0.
float limited(double component) {
  if (!(component > 0)) return 0;
  return component < 1 ? float(component) : 1;
}

// The brush has its own copy: it may outlive color and image.
QBrush brushOfPattern(const NSImage* image) {
  const NSBitmapImageRep* bitmap = image ? image->representation().get() : nullptr;
  const QImage picture = bitmap ? NSImageOfBitmap(*bitmap) : QImage();
  return picture.isNull() ? QBrush() : QBrush(picture.copy());
}

}  // namespace

NSColor NSColor::colorWithCalibratedRed(double red, double green, double blue, double alpha) {
  NSColor color;
  color.red_ = red;
  color.green_ = green;
  color.blue_ = blue;
  color.alpha_ = alpha;
  return color;
}

NSColor NSColor::colorWithPatternImage(std::shared_ptr<NSImage> image) {
  NSColor color;
  color.pattern_ = true;
  color.image_ = std::move(image);
  return color;
}

NSColor NSColor::fromQColor(const QColor& color) {
  return colorWithCalibratedRed(color.redF(), color.greenF(), color.blueF(), color.alphaF());
}

void NSColor::getRed(double* red, double* green, double* blue, double* alpha) const {
  if (red) *red = red_;
  if (green) *green = green_;
  if (blue) *blue = blue_;
  if (alpha) *alpha = alpha_;
}

void NSColor::set() const {
  NSGraphicsContext* context = NSGraphicsContext::currentContext();
  if (context) context->setFill(pattern_ ? brushOfPattern(image_.get()) : QBrush(toQColor()));
}

QColor NSColor::toQColor() const {
  return QColor::fromRgbF(limited(red_), limited(green_), limited(blue_), limited(alpha_));
}
