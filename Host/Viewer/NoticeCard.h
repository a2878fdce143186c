// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Viewer/Viewer.h"

#include <QElapsedTimer>
#include <QTimer>

class QLabel;
class QToolButton;

namespace host {

// A card at the lower edge of the picture that says what is going on; while something runs, for how long.
class NoticeCard : public QWidget {
 public:
  explicit NoticeCard(QWidget* parent);

  void set(const QString& text, Viewer::NoticeKind kind, std::function<void()> cancel, double seconds);
  Viewer::NoticeKind kind() const { return kind_; }
  void placeIn(QSize parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void showTime();

  Viewer::NoticeKind kind_ = Viewer::NoticeKind::None;
  QString words_;
  std::function<void()> cancel_;
  double seconds_ = 0;  // that had passed
  QElapsedTimer begun_;
  QTimer timer_;
  QLabel* text_;
  QLabel* time_;
  QToolButton* button_;
};

}  // namespace host
