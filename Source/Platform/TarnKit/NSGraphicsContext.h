// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"
#include "Platform/Visibility.h"

#include <QBrush>
#include <QRectF>

class QPainter;
class QWidget;

// Where drawing goes while a view or a button is drawn. Contexts nest: the newest is the current one until it is
// destroyed.
//
// This is the one place where drawing coordinates are converted: everything that draws takes points of the view and
// gets the widget's own from the context.
class TARN_EXPORT NSGraphicsContext {
 public:
  // The painter and the widget must outlive the context.
  NSGraphicsContext(QPainter& painter, const QWidget& widget, bool flipped);
  ~NSGraphicsContext();
  NSGraphicsContext(const NSGraphicsContext&) = delete;
  NSGraphicsContext& operator=(const NSGraphicsContext&) = delete;

  static NSGraphicsContext* currentContext();  // null outside of drawing

  // What the context was made with.
  QPainter& painter() const { return painter_; }
  const QWidget& widget() const { return widget_; }
  bool isFlipped() const { return flipped_; }
  double devicePixelRatio() const;  // of what is painted on, which may be an image

  // From the coordinates of the view to those of the widget.
  QPointF toWidget(NSPoint point) const;
  QRectF toWidget(NSRect rect) const;
  // The same rectangle with its edges moved to the nearest device pixels, for artwork that has to be sharp at
  // fractional ratios. `pixels`, when given, receives its size in device pixels.
  QRectF toWidgetAligned(NSRect rect, QSize* pixels = nullptr) const;

  // What fills from now on; opaque black at first. A brush with a picture repeats it from the view's origin.
  void setFill(const QBrush& fill) { fill_ = fill; }
  // The rectangle, its edges on device pixels; an empty one and NaN fill nothing.
  void fill(NSRect rect) const;

 private:
  QPainter& painter_;
  const QWidget& widget_;
  bool flipped_;
  QBrush fill_{Qt::black};
  NSGraphicsContext* previous_;
};
