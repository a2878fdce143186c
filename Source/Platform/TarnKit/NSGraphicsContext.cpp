// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSGraphicsContext.h"

#include "Platform/TarnKit/NSImage.h"
#include "Platform/TarnKit/NSTarnColor.h"

#include <QPainter>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace {

NSGraphicsContext* current = nullptr;

bool isDrawable(NSRect rect) {
  return rect.size.width > 0 && rect.size.height > 0;
}

void fillWithPattern(const NSGraphicsContext& context, const QRectF& rect) {
  const std::shared_ptr<NSImage>& pattern = context.color().patternImage();
  if (!pattern || !pattern->representation()) return;
  const QImage image = NSImageOfBitmap(*pattern->representation());
  if (image.isNull()) return;
  QPainter& painter = context.painter();
  painter.save();
  painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
  painter.setBrushOrigin(context.toWidget(NSPoint{}));
  painter.fillRect(rect, QBrush(image));
  painter.restore();
}

void fill(const NSGraphicsContext& context, NSRect rect) {
  if (!isDrawable(rect)) return;
  const QRectF target = context.toWidgetAligned(rect);
  if (context.color().isPattern()) return fillWithPattern(context, target);
  context.painter().fillRect(target, context.color().toQColor());
}

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

void NSBezierPath::fillRect(NSRect rect) {
  if (current) fill(*current, rect);
}

void NSBezierPath::strokeRect(NSRect rect, double lineWidth) {
  if (!current || !isDrawable(rect) || !(lineWidth > 0)) return;
  const double line = std::min({lineWidth, rect.size.width / 2, rect.size.height / 2});
  const auto [x, y] = rect.origin;
  const auto [width, height] = rect.size;
  fill(*current, NSMakeRect(x, y, width, line));
  fill(*current, NSMakeRect(x, y + height - line, width, line));
  fill(*current, NSMakeRect(x, y + line, line, height - 2 * line));
  fill(*current, NSMakeRect(x + width - line, y + line, line, height - 2 * line));
}

void NSDrawFocusRing(NSRect rect) {
  NSGraphicsContext* context = NSGraphicsContext::currentContext();
  if (!context) return;
  const double width = 1.5;
  QPainter& painter = context->painter();
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(NSTarnColor::focusRingColor().toQColor(), width));
  const QRectF ring = context->toWidget(rect).adjusted(width / 2, width / 2, -width / 2, -width / 2);
  painter.drawRoundedRect(ring, 3, 3);
  painter.restore();
}
