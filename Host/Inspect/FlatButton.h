// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QAbstractButton>

namespace host {

// A button in the look of the inspector, in the palette of the moment.
class FlatButton : public QAbstractButton {
 public:
  enum class Look {
    Well,       // a field that opens something: its text in the middle of a recessed ground
    Disclosure  // a heading that folds something away: checkable, with an arrow before its text
  };
  FlatButton(Look look, QWidget* parent);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void enterEvent(QEnterEvent*) override { update(); }
  void leaveEvent(QEvent*) override { update(); }
  void paintEvent(QPaintEvent* event) override;

 private:
  void paintWell(QPainter& painter) const;
  void paintDisclosure(QPainter& painter) const;
  const Look look_;
};

}  // namespace host
