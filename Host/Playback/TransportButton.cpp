// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/TransportButton.h"

#include <QPainter>
#include <QPainterPath>

namespace host {
namespace {

constexpr int kSize = 26;

// Everything is drawn about the origin, within 7 points of it.
QPainterPath triangle(double left, double tip, double half) {
  QPainterPath path(QPointF(left, -half));
  path.lineTo(tip, 0);
  path.lineTo(left, half);
  path.closeSubpath();
  return path;
}

QPainterPath bar(double x, double width, double half) {
  QPainterPath path;
  path.addRect(QRectF(x - width / 2, -half, width, 2 * half));
  return path;
}

QPainterPath arrowHead(const QPointF& tip, double toward, double size) {
  QPainterPath path(tip);
  path.lineTo(tip.x() - toward * size, tip.y() - size);
  path.lineTo(tip.x() - toward * size, tip.y() + size);
  path.closeSubpath();
  return path;
}

void drawLoop(TransportGlyph glyph, QPainter& painter, const QColor& ink) {
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(ink, 1.5, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
  if (glyph == TransportGlyph::Once) {
    painter.drawLine(QPointF(-6.5, 0), QPointF(2, 0));
    painter.drawLine(QPointF(6, -5), QPointF(6, 5));
    painter.fillPath(arrowHead({4.5, 0}, 1, 3.2), ink);
  } else if (glyph == TransportGlyph::Around) {
    QPainterPath lane;
    lane.moveTo(2.5, -4);
    lane.lineTo(-3, -4);
    lane.arcTo(QRectF(-7, -4, 8, 8), 90, 180);
    lane.lineTo(3, 4);
    lane.arcTo(QRectF(-1, -4, 8, 8), 270, 100);
    painter.drawPath(lane);
    painter.fillPath(arrowHead({5.5, -4}, 1, 3), ink);
  } else {
    painter.drawLine(QPointF(-6.5, -3), QPointF(3, -3));
    painter.drawLine(QPointF(-3, 3), QPointF(6.5, 3));
    painter.fillPath(arrowHead({6.5, -3}, 1, 2.8), ink);
    painter.fillPath(arrowHead({-6.5, 3}, -1, 2.8), ink);
  }
}

QPainterPath solidGlyph(TransportGlyph glyph) {
  switch (glyph) {
    case TransportGlyph::Play:
      return triangle(-4, 6, 6);
    case TransportGlyph::PlayBackward:
      return triangle(4, -6, 6);
    case TransportGlyph::Pause:
      return bar(-3.5, 3, 5.5) + bar(3.5, 3, 5.5);
    case TransportGlyph::StepForward:
      return bar(-4.25, 1.5, 5) + triangle(-1.5, 5.5, 5);
    case TransportGlyph::StepBack:
      return bar(4.25, 1.5, 5) + triangle(1.5, -5.5, 5);
    case TransportGlyph::GoToIn:
      return bar(-5, 2, 5) + triangle(4.5, -3.5, 5);
    case TransportGlyph::GoToOut:
      return bar(5, 2, 5) + triangle(-4.5, 3.5, 5);
    default:
      return {};
  }
}

}  // namespace

TransportButton::TransportButton(TransportGlyph glyph, QWidget* parent) : QAbstractButton(parent), glyph_(glyph) {
  setFixedSize(kSize, kSize);
  setFocusPolicy(Qt::TabFocus);
}

void TransportButton::setGlyph(TransportGlyph glyph) {
  if (glyph == glyph_) return;
  glyph_ = glyph;
  update();
}

void TransportButton::setTexts(const QString& name, const QString& keys) {
  setAccessibleName(name);
  setToolTip(keys.isEmpty() ? name : QStringLiteral("%1 (%2)").arg(name, keys));
}

void TransportButton::enterEvent(QEnterEvent* event) {
  QAbstractButton::enterEvent(event);
  update();
}

void TransportButton::leaveEvent(QEvent* event) {
  QAbstractButton::leaveEvent(event);
  update();
}

void TransportButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const bool isHot = isEnabled() && (underMouse() || isDown());
  painter.setPen(hasFocus() ? QPen(palette().color(QPalette::Highlight)) : QPen(Qt::NoPen));
  painter.setBrush(isHot ? QBrush(palette().color(QPalette::Light)) : QBrush(Qt::NoBrush));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);

  const QColor ink = palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText);
  painter.translate(QRectF(rect()).center());
  const QPainterPath solid = solidGlyph(glyph_);
  if (solid.isEmpty()) {
    drawLoop(glyph_, painter, ink);
  } else {
    painter.fillPath(solid, ink);
  }
}

}  // namespace host
