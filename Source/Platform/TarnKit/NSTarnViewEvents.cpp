// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSTarnView.h"

#include "Platform/TarnKit/NSMouseSession.h"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <memory>
#include <utility>

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
  if (isInPress_) return;
  if (isLeft) return pressLeft(*event, clickCount);
  // Qt sends a context-menu event to the same widget afterwards, whether it still lives or not. So the press is told
  // with that event, which is the last one, or with this call, when no such event comes.
  rightPress_.reset(event->clone());
  rightClickCount_ = clickCount;
  QMetaObject::invokeMethod(
      this, [this] { tellRightPress(); }, Qt::QueuedConnection);
}

void NSTarnView::pressLeft(const QMouseEvent& event, int clickCount) {
  const QPointer<NSTarnView> self(this);
  tellRightPress();
  if (self) NSMouseSession::begin(*this, event);
  if (!self) return;
  const auto isHeld = [] { return QGuiApplication::mouseButtons().testFlag(Qt::LeftButton); };
  const bool wasHeld = isHeld();
  leftButtonDown_ = true;
  isInPress_ = true;
  mouseDown(NSEvent(event, *this, clickCount));
  if (!self) return;
  isInPress_ = false;
  const std::unique_ptr<QMouseEvent> release = std::move(releaseAfterPress_);
  if (release) {
    letGo(*release);
  } else if (wasHeld && !isHeld()) {
    letGoElsewhere(event);  // a modal dialog has kept the release from everybody
  }
  if (self) updateCursor(event.position());
}

void NSTarnView::tellRightPress() {
  const std::unique_ptr<QMouseEvent> event = std::move(rightPress_);
  if (!event) return;
  const QPointer<NSTarnView> self(this);
  const NSEvent press(*event, *this, rightClickCount_);
  rightMouseDown(press);
  if (!self) return;
  rightPressTaken_ = press.wasTaken_;
  updateCursor(event->position());
}

void NSTarnView::letGo(const QMouseEvent& release) {
  if (!leftButtonDown_) return;
  if (isInPress_) return releaseAfterPress_.reset(release.clone());
  leftButtonDown_ = false;
  NSMouseSession::end(*this);
  mouseUp(NSEvent(release, *this, 1));
}

// With an event of another widget, or of another kind.
void NSTarnView::letGoElsewhere(const QMouseEvent& event) {
  const QPointF global = event.globalPosition();
  letGo(QMouseEvent(QEvent::MouseButtonRelease, mapFromGlobal(global), window()->mapFromGlobal(global), global,
                    Qt::LeftButton, event.buttons() & ~Qt::LeftButton, event.modifiers()));
}

void NSTarnView::mousePressEvent(QMouseEvent* event) {
  press(event, 1);
}

void NSTarnView::mouseDoubleClickEvent(QMouseEvent* event) {
  press(event, 2);
}

void NSTarnView::mouseMoveEvent(QMouseEvent* event) {
  event->accept();
  if (isInPress_) return;
  const bool held = leftButtonDown_ && (event->buttons() & Qt::LeftButton);
  const QPointer<NSTarnView> self(this);
  const NSEvent move(*event, *this, 0);
  if (leftButtonDown_ && !held) {
    letGoElsewhere(*event);  // the release was lost, to another program for example
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
  const QPointer<NSTarnView> self(this);
  letGo(*event);
  if (self) updateCursor(event->position());
}

void NSTarnView::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() == QContextMenuEvent::Mouse) {
    const QPointer<NSTarnView> self(this);
    event->accept();  // from a view that dies, nothing goes on to its superviews
    tellRightPress();
    if (self) event->setAccepted(rightPressTaken_);
    return;
  }
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
