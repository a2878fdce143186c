// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"
#include "Platform/TarnKit/NSColor.h"
#include "Platform/Visibility.h"

#include <QRectF>

class QPainter;
class QWidget;

// Where drawing goes while a view or a button is drawn. Contexts nest: the newest is the current one until it is
// destroyed.
//
// This is the one place where drawing coordinates are converted: everything that draws takes points of the view and
// asks the context for the widget's own.
class TARN_EXPORT NSGraphicsContext {
 public:
  // The painter and the widget must outlive the context.
  NSGraphicsContext(QPainter& painter, const QWidget& widget, bool flipped);
  ~NSGraphicsContext();
  NSGraphicsContext(const NSGraphicsContext&) = delete;
  NSGraphicsContext& operator=(const NSGraphicsContext&) = delete;

  static NSGraphicsContext* currentContext();  // null outside of drawing

  QPainter& painter() const { return painter_; }
  const QWidget& widget() const { return widget_; }
  bool isFlipped() const { return flipped_; }
  double devicePixelRatio() const;  // of what is painted on, which may be an image

  QPointF toWidget(NSPoint point) const;
  QRectF toWidget(NSRect rect) const;
  // The same rectangle with its edges moved to the nearest device pixels, for artwork that has to be sharp at
  // fractional ratios. `pixels`, when given, receives its size in device pixels.
  QRectF toWidgetAligned(NSRect rect, QSize* pixels = nullptr) const;

  void setColor(const NSColor& color) { color_ = color; }
  const NSColor& color() const { return color_; }

 private:
  QPainter& painter_;
  const QWidget& widget_;
  bool flipped_;
  NSColor color_;
  NSGraphicsContext* previous_;
};

// Filling and stroking with the current color, edges on device pixels. Outside drawRect nothing happens.
class TARN_EXPORT NSBezierPath {
 public:
  static void fillRect(NSRect rect);
  // A line of that width in points, inside the rectangle's edges.
  static void strokeRect(NSRect rect, double lineWidth = 1);
};

// The ring around what has the keyboard, just inside the rectangle.
TARN_EXPORT void NSDrawFocusRing(NSRect rect);
