// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSGraphicsContext.h"

#include <QPainter>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace {

NSGraphicsContext* current = nullptr;

}  // namespace

NSGraphicsContext::NSGraphicsContext(QPainter& painter, const QWidget& widget, bool flipped)
    : painter_(painter), widget_(widget), flipped_(flipped), previous_(current) {
  current = this;
}

NSGraphicsContext::~NSGraphicsContext() {
  current = previous_;
}

NSGraphicsContext* NSGraphicsContext::currentContext() {
  return current;
}

double NSGraphicsContext::devicePixelRatio() const {
  return std::abs(painter_.deviceTransform().m11());
}

QPointF NSGraphicsContext::toWidget(NSPoint point) const {
  return {point.x, flipped_ ? point.y : widget_.height() - point.y};
}

QRectF NSGraphicsContext::toWidget(NSRect rect) const {
  const double top = flipped_ ? rect.origin.y : widget_.height() - rect.origin.y - rect.size.height;
  return {rect.origin.x, top, rect.size.width, rect.size.height};
}

QRectF NSGraphicsContext::toWidgetAligned(NSRect rect, QSize* pixels) const {
  const QTransform toDevice = painter_.deviceTransform();
  const QRectF device = toDevice.mapRect(toWidget(rect));
  const double left = std::round(device.left());
  const double top = std::round(device.top());
  const double width = std::max(1.0, std::round(device.right()) - left);
  const double height = std::max(1.0, std::round(device.bottom()) - top);
  if (pixels) *pixels = QSize(int(width), int(height));
  return toDevice.inverted().mapRect(QRectF(left, top, width, height));
}

void NSGraphicsContext::fill(NSRect rect) const {
  if (!(rect.size.width > 0) || !(rect.size.height > 0)) return;
  const QRectF target = toWidgetAligned(rect);
  if (fill_.style() == Qt::SolidPattern) return painter_.fillRect(target, fill_.color());
  painter_.save();
  painter_.setRenderHint(QPainter::SmoothPixmapTransform, false);
  painter_.setBrushOrigin(toWidget(NSPoint{}));
  painter_.fillRect(target, fill_);
  painter_.restore();
}
