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

void NSMouseSession::begin(NSTarnView& view, const QMouseEvent& press) {
  NSMouseSession& session = shared();
  const QPointer<NSTarnView> before = session.takeView();
  session.view_ = &view;
  QCoreApplication::instance()->installEventFilter(&session);
  if (before && before != &view) before->letGoElsewhere(press);
}

void NSMouseSession::end(const NSTarnView& view) {
  if (shared().view_ == &view) shared().takeView();
}

NSTarnView* NSMouseSession::takeView() {
  NSTarnView* const view = view_;
  view_.clear();
  if (QCoreApplication::instance()) QCoreApplication::instance()->removeEventFilter(this);
  return view;
}

// The session is over before anybody is told: a view that takes no events lets them go on to its superviews, and each
// of those comes by here.
bool NSMouseSession::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::MouseButtonRelease || !watched->isWidgetType()) return false;
  const auto& release = *static_cast<QMouseEvent*>(event);
  if (release.button() != Qt::LeftButton || (watched == view_ && view_->isEnabled())) return false;
  const QPointer<QObject> receiver(watched);
  if (NSTarnView* view = takeView()) view->letGoElsewhere(release);
  if (receiver) return false;
  event->accept();  // a receiver that died meanwhile must not be handed the event, nor its superviews
  return true;
}
