// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QWidget>

class QLabel;

namespace host {

// A line that tells what went wrong, until the next thing succeeds or it is closed. Hidden while there is nothing.
class MessageBar : public QWidget {
 public:
  explicit MessageBar(QWidget* parent = nullptr);
  void show(const QString& text);
  void clear();
  QString text() const;

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void takeColors();

  QLabel* label_;
};

}  // namespace host
