// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>
#include <QPointer>

class NSTarnView;
class QMouseEvent;

// From a left press in a view to its release. The view is told of the release even when it goes elsewhere: to a pop-up
// that the press opened, to the superview because the view was disabled meanwhile, or nowhere because it was hidden.
class NSMouseSession : public QObject {
 public:
  // A session that another view still has lost its release: that view is told first, which may destroy both.
  static void begin(NSTarnView& view, const QMouseEvent& press);
  static void end(const NSTarnView& view);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  NSMouseSession() = default;
  static NSMouseSession& shared();
  NSTarnView* takeView();

  QPointer<NSTarnView> view_;
};
