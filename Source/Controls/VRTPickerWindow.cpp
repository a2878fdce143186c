// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTPickerWindow.h"

#include "Controls/VRTLocalizedText.h"
#include "Platform/TarnKit/NSGraphicsContext.h"
#include "Platform/TarnKit/NSTarnColor.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>
#include <algorithm>

namespace {

constexpr int kStep = 1;
constexpr int kLargeStep = 10;

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

QPoint VRTStepOfKey(const QKeyEvent& event) {
  return directionOf(event.key()) * (event.modifiers() & Qt::ShiftModifier ? kLargeStep : kStep);
}

VRTPickerWindow::VRTPickerWindow(QWidget& owner, VRTColorSwatch::Kind kind, const std::optional<NSColor>& oldColor,
                                 Handlers handlers)
    : QWidget(nullptr, Qt::Popup | Qt::FramelessWindowHint),
      swatch_(kind),
      handlers_(std::move(handlers)),
      owner_(&owner),
      hasOldColor_(oldColor.has_value()) {
  // A click outside ends the pick and does nothing else.
  setAttribute(Qt::WA_NoMouseReplay);
  setAttribute(Qt::WA_QuitOnClose, false);
  QObject::connect(&owner, &QObject::destroyed, this, [this] { ownerDied(); });
  setPalette(owner.palette());
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName(VRTLocalizedText(kind == VRTColorSwatch::Kind::color ? "Color picker" : "Gray picker"));
  if (oldColor) {
    picked_.setColor(*oldColor);
  } else {
    picked_.set(0, kind == VRTColorSwatch::Kind::color ? 0.5 : 0, 0.5);
  }
}

template <class Tell>
void VRTPickerWindow::tell(Tell tellHandlers) {
  ++telling_;
  tellHandlers();
  if (--telling_ == 0 && isDone_) deleteLater();
}

void VRTPickerWindow::dispose() {
  isDone_ = true;
  hide();
  if (telling_ == 0) deleteLater();
}

void VRTPickerWindow::ownerDied() {
  tell([this] { handlers_.ownerDied(); });
  dispose();
}

void VRTPickerWindow::moveOnScreen(QPoint corner, QPoint near) {
  const QScreen* screen = QGuiApplication::screenAt(near);
  if (!screen) screen = QGuiApplication::primaryScreen();
  if (!screen) return move(corner);
  const QRect room = screen->availableGeometry();
  // A screen smaller than the window shows its upper left part.
  move(std::max(room.left(), std::min(corner.x(), room.right() + 1 - width())),
       std::max(room.top(), std::min(corner.y(), room.bottom() + 1 - height())));
}

void VRTPickerWindow::report() {
  hasReported_ = true;
  update();
  tell([this] { handlers_.report(picked_.color()); });
}

void VRTPickerWindow::finish(bool taken) {
  tell([this, taken] { handlers_.finish(taken); });
}

void VRTPickerWindow::take() {
  tell([this] {
    if (!hasReported_ && !hasOldColor_) report();
    finish(true);
  });
}

bool VRTPickerWindow::event(QEvent* event) {
  // Escape belongs to the window before it is anybody's shortcut.
  if (event->type() == QEvent::ShortcutOverride) event->accept();
  return QWidget::event(event);
}

void VRTPickerWindow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const NSGraphicsContext context(painter, *this, true);
  painter.fillRect(rect(), NSTarnColor::controlOutlineColor().toQColor());
  painter.fillRect(rect().adjusted(1, 1, -1, -1), NSTarnColor::inspectorBackgroundColor().toQColor());
}

bool VRTPickerWindow::pickByKey(const QKeyEvent& event) {
  const QPoint step = VRTStepOfKey(event);
  if (!step.isNull()) {
    swatch_.mainField().field.step(step, picked_);
    return true;
  }
  const bool pages = event.key() == Qt::Key_PageUp || event.key() == Qt::Key_PageDown;
  if (!pages || swatch_.kind() != VRTColorSwatch::Kind::color) return false;
  const int points = event.modifiers() & Qt::ShiftModifier ? kLargeStep : kStep;
  swatch_.fields().back().field.step({0, event.key() == Qt::Key_PageUp ? -points : points}, picked_);
  return true;
}

void VRTPickerWindow::keyPressEvent(QKeyEvent* event) {
  event->accept();
  if (event->key() == Qt::Key_Escape) return finish(false);
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return take();
  if (pickByKey(*event)) pickedByKey();
}

// The window system puts a pop-up where the window is that it belongs to.
void VRTPickerWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (owner_ && windowHandle()) windowHandle()->setTransientParent(owner_->window()->windowHandle());
}

void VRTPickerWindow::hideEvent(QHideEvent*) {
  finish(keepsColorWhenClosed());
}
