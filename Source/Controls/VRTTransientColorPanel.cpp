// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTTransientColorPanel.h"

#include "Controls/VRTTheme.h"
#include "Controls/VRTThemeStore.h"
#include "Platform/TarnKit/NSGraphicsContext.h"
#include "Platform/TarnKit/NSTarnColor.h"
#include "Platform/TarnKit/TarnTheme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <algorithm>

namespace {

constexpr int kMargin = 6;
constexpr double kRingRadius = 5;
constexpr int kStep = 1;
constexpr int kLargeStep = 10;

QPoint keptOnScreen(QPoint centre, QSize size) {
  const QScreen* screen = QGuiApplication::screenAt(centre);
  if (!screen) screen = QGuiApplication::primaryScreen();
  const QPoint corner = centre - QPoint(size.width() / 2, size.height() / 2);
  if (!screen) return corner;
  const QRect room = screen->availableGeometry();
  // A screen smaller than the panel shows its upper left part.
  return {std::max(room.left(), std::min(corner.x(), room.right() + 1 - size.width())),
          std::max(room.top(), std::min(corner.y(), room.bottom() + 1 - size.height()))};
}

QPoint directionOf(int key) {
  switch (key) {
    case Qt::Key_Left:
      return {-1, 0};
    case Qt::Key_Right:
      return {1, 0};
    case Qt::Key_Up:
      return {0, -1};
    case Qt::Key_Down:
      return {0, 1};
    default:
      return {0, 0};
  }
}

}  // namespace

VRTTransientColorPanel::VRTTransientColorPanel(QWidget& owner, VRTColorSwatch::Kind kind, QPoint globalPosition,
                                               const std::optional<NSColor>& oldColor, Handlers handlers)
    : QWidget(&owner, Qt::Popup | Qt::FramelessWindowHint),
      swatch_(kind),
      handlers_(std::move(handlers)),
      openedAt_(globalPosition),
      hasOldColor_(oldColor.has_value()) {
  // A click outside ends the pick and does nothing else.
  setAttribute(Qt::WA_NoMouseReplay);
  setPalette(owner.palette());
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName(kind == VRTColorSwatch::Kind::color ? QStringLiteral("Color picker")
                                                        : QStringLiteral("Gray picker"));
  setCursor(CursorOfThemeAtomAtIndex(VRTTheme::theme(), VRTThemeAtomCursor, 0));
  const QSize size = swatch_.size() + QSize(2 * kMargin, 2 * kMargin);
  setFixedSize(size);
  move(keptOnScreen(globalPosition, size));
  place_ = oldColor ? swatch_.placeOf(*oldColor)
                    : swatch_.limited(QPointF(swatch_.size().width() / 2.0, swatch_.size().height() / 2.0));
}

VRTTransientColorPanel::~VRTTransientColorPanel() {
  handlers_.died();
}

QPoint VRTTransientColorPanel::swatchOrigin() {
  return {kMargin, kMargin};
}

bool VRTTransientColorPanel::event(QEvent* event) {
  // Escape belongs to the panel before it is anybody's shortcut.
  if (event->type() == QEvent::ShortcutOverride) event->accept();
  return QWidget::event(event);
}

void VRTTransientColorPanel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const NSGraphicsContext context(painter, *this, true);
  painter.fillRect(rect(), NSTarnColor::controlOutlineColor().toQColor());
  painter.fillRect(rect().adjusted(1, 1, -1, -1), NSTarnColor::inspectorBackgroundColor().toQColor());
  const double ratio = devicePixelRatioF();
  if (image_.isNull() || image_.devicePixelRatio() != ratio) image_ = swatch_.image(ratio);
  painter.drawImage(swatchOrigin(), image_);
  painter.setRenderHint(QPainter::Antialiasing);
  const QPointF centre = place_ + swatchOrigin() + QPointF(0.5, 0.5);
  painter.setPen(QPen(QColor(0, 0, 0, 160), 3));
  painter.drawEllipse(centre, kRingRadius, kRingRadius);
  painter.setPen(QPen(Qt::white, 1.5));
  painter.drawEllipse(centre, kRingRadius, kRingRadius);
}

// Copies run: the panel may be destroyed by what it calls.
void VRTTransientColorPanel::finish(bool taken) {
  const auto finishPick = handlers_.finish;
  finishPick(taken);
}

void VRTTransientColorPanel::reportPlace(QPointF place) {
  place_ = place;
  hasReported_ = true;
  update();
  const auto report = handlers_.report;
  report(swatch_.colorAt(place));
}

// The margin counts as the nearest edge of the swatch, so that its extremes are easy to hit.
void VRTTransientColorPanel::follow(QPointF position) {
  if (rect().contains(position.toPoint())) reportPlace(swatch_.limited(position - swatchOrigin()));
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
  const QPointer<VRTTransientColorPanel> self(this);
  follow(event->position());
  if (self) finish(inside);
}

void VRTTransientColorPanel::takeByKey() {
  const QPointer<VRTTransientColorPanel> self(this);
  if (!hasReported_ && !hasOldColor_) reportPlace(place_);
  if (self) finish(true);
}

void VRTTransientColorPanel::keyPressEvent(QKeyEvent* event) {
  event->accept();
  if (event->key() == Qt::Key_Escape) return finish(false);
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return takeByKey();
  const QPoint direction = directionOf(event->key());
  if (direction.isNull()) return;
  reportPlace(swatch_.limited(place_ + direction * (event->modifiers() & Qt::ShiftModifier ? kLargeStep : kStep)));
}

// Closed from outside: another window came to the front, or the application hid its windows.
void VRTTransientColorPanel::hideEvent(QHideEvent*) {
  finish(false);
}
