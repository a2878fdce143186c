// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>
#include <QPointer>

class NSTarnView;

// From a left press in a view to its release. The view gets its mouseUp even when the release goes elsewhere: to a
// pop-up that the press opened, or nowhere because the view was hidden meanwhile.
class NSMouseSession : public QObject {
 public:
  static void begin(NSTarnView& view);
  static void end(const NSTarnView& view);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  NSMouseSession() = default;
  static NSMouseSession& shared();

  QPointer<QWidget> view_;
};
