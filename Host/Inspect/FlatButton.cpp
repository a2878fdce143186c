// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/FlatButton.h"

#include <QPainter>
#include <QPainterPath>

namespace host {
namespace {

constexpr int kHeight = 24;
constexpr int kPadding = 8;
constexpr int kArrow = 16;  // what it takes before the text

}  // namespace

FlatButton::FlatButton(Look look, QWidget* parent) : QAbstractButton(parent), look_(look) {
  setFocusPolicy(Qt::StrongFocus);
  setCheckable(look == Look::Disclosure);
  setAttribute(Qt::WA_Hover);
}

QSize FlatButton::sizeHint() const {
  const int before = look_ == Look::Disclosure ? kArrow : kPadding;
  return {fontMetrics().horizontalAdvance(text()) + before + kPadding, kHeight};
}

QSize FlatButton::minimumSizeHint() const {
  return look_ == Look::Disclosure ? sizeHint() : QSize(40, kHeight);
}

void FlatButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  look_ == Look::Well ? paintWell(painter) : paintDisclosure(painter);
}

void FlatButton::paintWell(QPainter& painter) const {
  const QPalette& colors = palette();
  painter.setBrush(colors.color(underMouse() || isDown() ? QPalette::Button : QPalette::Base));
  painter.setPen(colors.color(hasFocus() ? QPalette::Highlight : QPalette::Mid));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
  const QRect room = rect().adjusted(kPadding, 0, -kPadding, 0);
  painter.setPen(colors.color(QPalette::Text));
  painter.drawText(room, Qt::AlignCenter, fontMetrics().elidedText(text(), Qt::ElideMiddle, room.width()));
}

void FlatButton::paintDisclosure(QPainter& painter) const {
  const QColor ink = palette().color(hasFocus() ? QPalette::Highlight : QPalette::WindowText);
  painter.setPen(QPen(ink, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  const QPointF middle(6, height() / 2.0);
  QPainterPath arrow;
  if (isChecked()) {
    arrow.moveTo(middle + QPointF(-4, -2));
    arrow.lineTo(middle + QPointF(0, 2));
    arrow.lineTo(middle + QPointF(4, -2));
  } else {
    arrow.moveTo(middle + QPointF(-2, -4));
    arrow.lineTo(middle + QPointF(2, 0));
    arrow.lineTo(middle + QPointF(-2, 4));
  }
  painter.drawPath(arrow);
  painter.drawText(rect().adjusted(kArrow, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, text());
}

}  // namespace host
