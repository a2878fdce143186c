// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/ColorText.h"

#include <QAbstractButton>
#include <functional>
#include <optional>

class QMimeData;

namespace host {

// A color to look at. It can be dragged out, copied (Control-C), dropped and pasted onto; a click, Space or Enter is
// for choosing another one. What is dropped or pasted is told; who is told may destroy the swatch.
class ColorSwatch : public QAbstractButton {
 public:
  struct Told {
    std::function<void(const Rgb& color)> given;
    std::function<bool(const QMimeData& mime)> paste;  // what is pasted and is no color; may be empty
  };
  ColorSwatch(Told told, QWidget* parent);

  void setColor(const std::optional<Rgb>& color);
  const std::optional<Rgb>& color() const { return color_; }
  void setTakesColors(bool takes);  // dropped and pasted ones; at first it does

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void paste();

  const Told told_;
  std::optional<Rgb> color_;
  QPoint pressedAt_;
  bool isTarget_ = false;  // of a drag
};

}  // namespace host
