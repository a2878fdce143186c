// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTPickerWindow.h"

// The swatch for one press, drag and release: nothing but the fields of colors under the pointer. It follows pointer
// and keyboard and says what they mean.
class VRTTransientColorPanel : public VRTPickerWindow {
 public:
  // Opened at a point of the screen, where the old color comes to lie; the pointer is taken to be there, with a button
  // held or not.
  VRTTransientColorPanel(QWidget& owner, VRTColorSwatch::Kind kind, QPoint globalPosition,
                         const std::optional<NSColor>& oldColor, Handlers handlers);

  const VRTColorSwatch& swatch() const { return swatch_; }
  // Where the swatch's upper left corner lies in the panel.
  static QPoint swatchOrigin();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  void follow(QPointF position);
  void pickedByKey() override { report(); }

  QPoint openedAt_;
  bool pressed_ = false;
  bool dragged_ = false;  // the button that opened the panel has moved away from there
};
