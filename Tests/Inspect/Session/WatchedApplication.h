// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QFile>
#include <QString>
#include <QThread>
#include <algorithm>

// Notes how long the event thread takes for one event: the time until the next could be handled, without that in which
// the thread was ready and other threads and processes had the processors. Events that run a loop of their own
// (dialogs) are not counted, those within it are.
class WatchedApplication : public QApplication {
 public:
  using QApplication::QApplication;

  struct Longest {
    double milliseconds = 0;
    QString what;  // the event, and who had it
  };
  Longest takeLongest() { return std::exchange(longest_, {}); }

  bool notify(QObject* receiver, QEvent* event) override {
    Frame* const outer = innermost_;
    Frame frame{QThread::currentThread()->loopLevel()};
    if (outer && frame.loopLevel > outer->loopLevel) {
      for (Frame* each = outer; each; each = each->outer) each->hasLoop = true;
    }
    frame.outer = outer;
    innermost_ = &frame;
    const QString who = QString::fromLatin1(receiver->metaObject()->className()) + ' ' + receiver->objectName();
    const int type = event->type();
    const double waitedBefore = millisecondsReady();
    QElapsedTimer timer;
    timer.start();
    const bool result = QApplication::notify(receiver, event);
    const double taken = static_cast<double>(timer.nsecsElapsed()) / 1e6 - (millisecondsReady() - waitedBefore);
    innermost_ = outer;
    if (!frame.hasLoop && taken > longest_.milliseconds) {
      longest_ = {taken, QStringLiteral("event %1 of %2").arg(type).arg(who)};
    }
    return result;
  }

 private:
  struct Frame {
    int loopLevel;
    bool hasLoop = false;
    Frame* outer = nullptr;
  };

  // How long this thread has waited for a processor, while it could have run.
  static double millisecondsReady() {
    QFile file(QStringLiteral("/proc/thread-self/schedstat"));
    if (!file.open(QIODevice::ReadOnly)) return 0;
    const QList<QByteArray> numbers = file.readAll().split(' ');
    return numbers.size() > 1 ? numbers[1].toDouble() / 1e6 : 0;
  }

  Frame* innermost_ = nullptr;
  Longest longest_;
};
