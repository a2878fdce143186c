// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QAbstractButton>

namespace host {

// A small flat button with an arrow, for the one before and the one after.
class StepButton : public QAbstractButton {
 public:
  enum class Direction { Left, Right };
  StepButton(Direction direction, const QString& name, QWidget* parent);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;

 private:
  const Direction direction_;
};

}  // namespace host
