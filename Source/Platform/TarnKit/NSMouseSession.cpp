// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSMouseSession.h"

#include "Platform/TarnKit/NSTarnView.h"

#include <QCoreApplication>
#include <QMouseEvent>

// Never destroyed: views may outlive static objects.
NSMouseSession& NSMouseSession::shared() {
  static auto& session = *new NSMouseSession;
  return session;
}

void NSMouseSession::begin(NSTarnView& view) {
  NSMouseSession& session = shared();
  session.view_ = &view;
  QCoreApplication::instance()->removeEventFilter(&session);
  QCoreApplication::instance()->installEventFilter(&session);
}

void NSMouseSession::end(const NSTarnView& view) {
  NSMouseSession& session = shared();
  if (session.view_ != &view) return;
  session.view_ = nullptr;
  if (QCoreApplication::instance()) QCoreApplication::instance()->removeEventFilter(&session);
}

bool NSMouseSession::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::MouseButtonRelease || !watched->isWidgetType() || watched == view_) return false;
  auto* release = static_cast<QMouseEvent*>(event);
  if (release->button() != Qt::LeftButton) return false;
  QPointer<QWidget> view = view_;
  if (!view) {
    QCoreApplication::instance()->removeEventFilter(this);
    return false;
  }
  const QPointF global = release->globalPosition();
  QMouseEvent copy(QEvent::MouseButtonRelease, view->mapFromGlobal(global), view->window()->mapFromGlobal(global),
                   global, Qt::LeftButton, release->buttons(), release->modifiers());
  QPointer<QObject> receiver(watched);
  QCoreApplication::sendEvent(view, &copy);
  return receiver.isNull();  // a receiver that died meanwhile must not be handed the event
}
