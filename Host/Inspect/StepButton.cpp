// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/StepButton.h"

#include <QEvent>
#include <QPainter>

namespace host {
namespace {

constexpr QSize kSize{22, 20};
constexpr double kRadius = 3;

}  // namespace

StepButton::StepButton(Direction direction, const QString& name, QWidget* parent)
    : QAbstractButton(parent), direction_(direction) {
  setAccessibleName(name);
  setToolTip(name);
  setFocusPolicy(Qt::StrongFocus);
  setFixedSize(kSize);
  setAttribute(Qt::WA_Hover);
}

QSize StepButton::sizeHint() const {
  return kSize;
}

bool StepButton::event(QEvent* event) {
  if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave) update();
  return QAbstractButton::event(event);
}

void StepButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QPalette& colors = palette();
  if (!isEnabled()) painter.setOpacity(0.4);
  if (isDown() || underMouse() || hasFocus()) {
    QColor ground = colors.color(QPalette::WindowText);
    ground.setAlphaF(isDown() ? 0.2f : underMouse() ? 0.1f : 0);
    painter.setBrush(ground);
    painter.setPen(hasFocus() ? QPen(colors.color(QPalette::Highlight), 1.5) : QPen(Qt::NoPen));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), kRadius, kRadius);
  }
  QPen pen(colors.color(QPalette::WindowText), 1.5);
  pen.setCapStyle(Qt::RoundCap);
  pen.setJoinStyle(Qt::RoundJoin);
  painter.setPen(pen);
  painter.translate(QRectF(rect()).center());
  if (direction_ == Direction::Left) painter.scale(-1, 1);
  painter.drawPolyline(QPolygonF({{-1.75, -3.5}, {1.75, 0}, {-1.75, 3.5}}));
}

}  // namespace host
