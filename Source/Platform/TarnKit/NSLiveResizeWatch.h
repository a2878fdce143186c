// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>
#include <QTimer>

class QWidget;

// Watches a window while the user resizes it, and tells its views when that begins and ends. One for every window that
// has views; the window owns it.
class NSLiveResizeWatch : public QObject {
 public:
  static void watch(QWidget& window);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  explicit NSLiveResizeWatch(QWidget& window);
  void begin();
  void end();

  QWidget& window_;
  QTimer quiet_;
};
