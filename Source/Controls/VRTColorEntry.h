// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTPickedColor.h"

#include <QWidget>
#include <functional>

class QDoubleSpinBox;
class QLineEdit;

// A text field of a color picker with a short label before it. What is typed counts at once.
class VRTColorEntry : public QWidget {
 public:
  // The color of the picker, to be shown.
  virtual void show(const VRTPickedColor& color) = 0;
  using QWidget::show;

 protected:
  VRTColorEntry(const QString& label, const QString& name, QWidget* parent);
  void setEditor(QWidget& editor);

  int labelWidth() const;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QRect frame() const;  // of the text field

  QString label_;
  QWidget* editor_ = nullptr;
};

// One component as a number. Arrow keys and wheel step it; dragging the label sideways scrubs it, with Shift a tenth as
// far.
class VRTColorNumberEntry : public VRTColorEntry {
 public:
  struct Layout {
    VRTColorComponent component;
    const char* label;  // English, as the name
    const char* name;   // for tooltips and assistive technology
    double maximum;
    int decimals;
    const char* suffix;
  };
  using Changed = std::function<void(VRTColorComponent component, double number)>;

  VRTColorNumberEntry(const Layout& layout, Changed changed, QWidget* parent);
  void show(const VRTPickedColor& color) override;
  QDoubleSpinBox& box() const { return *box_; }

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  VRTColorComponent component_;
  QDoubleSpinBox* box_;
  double scrubbedFrom_ = 0;
  double scrubStart_ = 0;  // x of the press
};

// A whole color in hexadecimal digits: six count at once, three when the entry is finished. A text that is no color
// changes nothing and goes when the keyboard leaves.
class VRTColorHexEntry : public VRTColorEntry {
 public:
  using Changed = std::function<void(const NSColor& color)>;

  VRTColorHexEntry(Changed changed, QWidget* parent);
  void show(const VRTPickedColor& color) override;
  QLineEdit& line() const { return *line_; }

 private:
  void take(int fewestDigits);

  Changed changed_;
  QLineEdit* line_;
  NSColor shownColor_;
  QString shown_;
};
