// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSTarnView.h"

#include "Platform/TarnKit/NSMouseSession.h"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>

namespace {

// The same event for another widget, as Qt would have delivered it there.
void forward(const QMouseEvent& event, QWidget& receiver) {
  QMouseEvent copy(event.type(), receiver.mapFromGlobal(event.globalPosition()), event.scenePosition(),
                   event.globalPosition(), event.button(), event.buttons(), event.modifiers());
  QCoreApplication::sendEvent(&receiver, &copy);
}

void popUp(QMenu* menu, QPoint globalPosition) {
  QObject::connect(menu, &QMenu::aboutToHide, menu, &QObject::deleteLater);
  menu->popup(globalPosition);
}

bool isModifierKey(int key) {
  return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt;
}

}  // namespace

// Views hand events on among themselves, so that a handler may pass one on as another kind (a right press as
// mouseDown). Qt sees every mouse event accepted by the view that it was meant for.
void NSTarnView::pass(Handler handler, const NSEvent& event) {
  if (NSTarnView* next = superview()) return (next->*handler)(event);
  event.wasTaken_ = false;
  if (event.source_ && parentWidget() && !isWindow()) forward(*event.source_, *parentWidget());
}

void NSTarnView::mouseDown(const NSEvent& event) {
  pass(&NSTarnView::mouseDown, event);
}

void NSTarnView::mouseDragged(const NSEvent& event) {
  pass(&NSTarnView::mouseDragged, event);
}

void NSTarnView::mouseUp(const NSEvent& event) {
  pass(&NSTarnView::mouseUp, event);
}

void NSTarnView::mouseMoved(const NSEvent&) {}

void NSTarnView::mouseExited() {}

void NSTarnView::rightMouseDown(const NSEvent& event) {
  if (QMenu* menu = menuForEvent(event)) return popUp(menu, event.globalPosition());
  pass(&NSTarnView::rightMouseDown, event);
}

void NSTarnView::flagsChanged(const NSEvent&) {}

QMenu* NSTarnView::menuForEvent(const NSEvent&) {
  return nullptr;
}

void NSTarnView::keyDown(QKeyEvent& event) {
  event.ignore();
}

std::optional<QCursor> NSTarnView::cursorAtPoint(NSPoint) const {
  return std::nullopt;
}

void NSTarnView::updateCursor(QPointF position) {
  const std::optional<QCursor> cursor = cursorAtPoint(fromWidget(position));
  if (cursor) {
    setCursor(*cursor);
  } else if (cursorIsSet_) {
    unsetCursor();
  }
  cursorIsSet_ = cursor.has_value();
}

void NSTarnView::press(QMouseEvent* event, int clickCount) {
  const bool isLeft = event->button() == Qt::LeftButton;
  if (!isLeft && (leftButtonDown_ || event->button() != Qt::RightButton)) return event->setAccepted(leftButtonDown_);
  event->accept();
  const QPointer<NSTarnView> self(this);
  const NSEvent press(*event, *this, clickCount);
  if (isLeft) {
    leftButtonDown_ = true;
    NSMouseSession::begin(*this);
    mouseDown(press);
  } else {
    rightMouseDown(press);
    if (self) rightPressTaken_ = press.wasTaken_;
  }
  if (self) updateCursor(event->position());
}

void NSTarnView::mousePressEvent(QMouseEvent* event) {
  press(event, 1);
}

void NSTarnView::mouseDoubleClickEvent(QMouseEvent* event) {
  press(event, 2);
}

void NSTarnView::mouseMoveEvent(QMouseEvent* event) {
  const bool held = leftButtonDown_ && (event->buttons() & Qt::LeftButton);
  event->accept();
  const QPointer<NSTarnView> self(this);
  const NSEvent move(*event, *this, 0);
  if (leftButtonDown_ && !held) {
    // The release was lost, to another program for example. A gesture must end nevertheless.
    leftButtonDown_ = false;
    NSMouseSession::end(*this);
    mouseUp(move);
  } else if (held) {
    mouseDragged(move);
  } else if (event->buttons() == Qt::NoButton) {
    mouseMoved(move);
  }
  if (self) updateCursor(event->position());
}

void NSTarnView::mouseReleaseEvent(QMouseEvent* event) {
  event->accept();
  if (event->button() != Qt::LeftButton || !leftButtonDown_) return;
  leftButtonDown_ = false;
  NSMouseSession::end(*this);
  const QPointer<NSTarnView> self(this);
  mouseUp(NSEvent(*event, *this, 1));
  if (self) updateCursor(event->position());
}

void NSTarnView::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() == QContextMenuEvent::Mouse) return event->setAccepted(rightPressTaken_);
  const NSEvent atPosition(convertPointToWindow(fromWidget(QPointF(event->pos()))), NSModifierFlags(event->modifiers()),
                           1, event->globalPos());
  QMenu* menu = menuForEvent(atPosition);
  event->setAccepted(menu != nullptr);
  if (menu) popUp(menu, event->globalPos());
}

void NSTarnView::leaveEvent(QEvent*) {
  mouseExited();
}

void NSTarnView::passModifiers(const QKeyEvent& event) {
  const QPoint pointer = QCursor::pos();
  // The event tells the modifiers before the key; the key itself is added or taken away.
  Qt::KeyboardModifiers modifiers = event.modifiers();
  const Qt::KeyboardModifier own = event.key() == Qt::Key_Shift     ? Qt::ShiftModifier
                                   : event.key() == Qt::Key_Control ? Qt::ControlModifier
                                                                    : Qt::AltModifier;
  modifiers.setFlag(own, event.type() == QEvent::KeyPress);
  flagsChanged(NSEvent(convertPointToWindow(fromWidget(QPointF(mapFromGlobal(pointer)))), NSModifierFlags(modifiers), 0,
                       pointer));
}

void NSTarnView::keyPressEvent(QKeyEvent* event) {
  if (!isModifierKey(event->key())) return keyDown(*event);
  event->ignore();
  passModifiers(*event);
}

void NSTarnView::keyReleaseEvent(QKeyEvent* event) {
  event->ignore();
  if (isModifierKey(event->key())) passModifiers(*event);
}
