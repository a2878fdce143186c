// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QAbstractButton>
#include <QDoubleSpinBox>
#include <functional>

class QMouseEvent;
class QMenu;

// The flat controls of the viewer's bar.
namespace host {

// A word or a small drawing that is pressed, stays pressed, or opens a menu.
class BarButton : public QAbstractButton {
 public:
  explicit BarButton(const QString& name, QWidget* parent);

  void setMenu(QMenu* menu);  // filled when it is about to show; shown below the button
  void setTextColor(const QColor& color) { textColor_ = color; }  // instead of the palette's
  // Drawn instead of a text, into a square of 16 points.
  void setDrawing(std::function<void(QPainter&, const QRectF&, const QColor& ink)> drawing);
  void setWidest(int points) { widest_ = points; }  // longer texts are cut in the middle

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void enterEvent(QEnterEvent*) override { update(); }
  void leaveEvent(QEvent*) override { update(); }
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  QMenu* menu_ = nullptr;
  QColor textColor_;
  std::function<void(QPainter&, const QRectF&, const QColor&)> drawing_;
  int widest_ = 1000;
};

// A number with a sign before it that is dragged sideways: typed, stepped by arrows and wheel; a double click on the
// sign brings the usual value back. Another value than that has the color of what is selected.
class BarNumber : public QWidget {
 public:
  struct Range {
    double least, most, usual, step;
    int decimals;
    bool isSigned;  // shown with its plus
  };
  BarNumber(const QString& sign, const QString& name, const Range& range, std::function<void(double)> changed,
            QWidget* parent);

  void setValue(double value);  // tells nobody
  double value() const { return box_->value(); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void showValue();
  bool dragSign(const QMouseEvent& mouse);

  const Range range_;
  const std::function<void(double)> changed_;
  QDoubleSpinBox* box_;
  QWidget* sign_;
  double dragFrom_ = 0;
  double dragValue_ = 0;
};

}  // namespace host
