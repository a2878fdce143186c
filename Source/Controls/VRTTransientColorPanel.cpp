// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTTransientColorPanel.h"

#include "Controls/VRTTheme.h"
#include "Controls/VRTThemeStore.h"
#include "Platform/TarnKit/NSGraphicsContext.h"
#include "Platform/TarnKit/TarnTheme.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int kMargin = 8;

}  // namespace

VRTTransientColorPanel::VRTTransientColorPanel(QWidget& owner, VRTColorSwatch::Kind kind, QPoint globalPosition,
                                               const std::optional<NSColor>& oldColor, Handlers handlers)
    : VRTPickerWindow(owner, kind, oldColor, std::move(handlers)), openedAt_(globalPosition) {
  setMouseTracking(true);
  setCursor(CursorOfThemeAtomAtIndex(VRTTheme::theme(), VRTThemeAtomCursor, 0));
  setFixedSize(swatch_.size() + QSize(2 * kMargin, 2 * kMargin));
  moveOnScreen(globalPosition - swatchOrigin() - swatch_.placeOf(picked_).toPoint(), globalPosition);
}

QPoint VRTTransientColorPanel::swatchOrigin() {
  return {kMargin, kMargin};
}

void VRTTransientColorPanel::paintEvent(QPaintEvent* event) {
  VRTPickerWindow::paintEvent(event);
  QPainter painter(this);
  const NSGraphicsContext context(painter, *this, true);
  swatch_.draw(painter, swatchOrigin(), picked_);
}

// The margin counts as the nearest edge of the swatch, so that its extremes are easy to hit.
void VRTTransientColorPanel::follow(QPointF position) {
  if (!rect().contains(position.toPoint())) return;
  swatch_.pick(position - swatchOrigin(), picked_);
  report();
}

void VRTTransientColorPanel::mousePressEvent(QMouseEvent* event) {
  event->accept();
  const bool inside = rect().contains(event->position().toPoint());
  if (event->button() == Qt::RightButton) {
    // Qt sends the panel a context-menu event next, whether it still lives or not: nobody is told before that.
    pressed_ = inside;
    if (!inside) hide();
    return;
  }
  if (!inside) return finish(false);
  pressed_ = true;
  follow(event->position());
}

void VRTTransientColorPanel::mouseMoveEvent(QMouseEvent* event) {
  event->accept();
  const QPoint way = event->globalPosition().toPoint() - openedAt_;
  if (event->buttons() != Qt::NoButton && way.manhattanLength() >= QApplication::startDragDistance()) dragged_ = true;
  follow(event->position());
}

// The release of the press that opened the panel takes a color only when it was dragged there; otherwise the panel
// stays for a click of its own.
void VRTTransientColorPanel::mouseReleaseEvent(QMouseEvent* event) {
  event->accept();
  if (!pressed_ && !dragged_) return;
  const bool inside = rect().contains(event->position().toPoint());
  follow(event->position());
  finish(inside);
}
