// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSBezierPath.h"

#include "Platform/TarnKit/NSGraphicsContext.h"
#include "Platform/TarnKit/NSTarnColor.h"

#include <QPainter>
#include <algorithm>

void NSBezierPath::fillRect(NSRect rect) {
  if (const NSGraphicsContext* context = NSGraphicsContext::currentContext()) context->fill(rect);
}

void NSBezierPath::strokeRect(NSRect rect, double lineWidth) {
  if (!(rect.size.width > 0) || !(rect.size.height > 0) || !(lineWidth > 0)) return;
  const double line = std::min({lineWidth, rect.size.width / 2, rect.size.height / 2});
  const auto [x, y] = rect.origin;
  const auto [width, height] = rect.size;
  fillRect(NSMakeRect(x, y, width, line));
  fillRect(NSMakeRect(x, y + height - line, width, line));
  fillRect(NSMakeRect(x, y + line, line, height - 2 * line));
  fillRect(NSMakeRect(x + width - line, y + line, line, height - 2 * line));
}

void NSDrawFocusRing(NSRect rect) {
  const NSGraphicsContext* context = NSGraphicsContext::currentContext();
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
