// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTColorSwatch.h"

#include <QWidget>
#include <functional>

// The window of a transient color picker: shows the swatch, follows pointer and keyboard, and says what they mean.
class VRTTransientColorPanel : public QWidget {
 public:
  struct Handlers {
    std::function<void(const NSColor&)> report;
    std::function<void(bool taken)> finish;  // may be called more than once
    std::function<void()> died;
  };

  // Opened at a point of the screen; the pointer is taken to be there, with a button held or not.
  VRTTransientColorPanel(QWidget& owner, VRTColorSwatch::Kind kind, QPoint globalPosition,
                         const std::optional<NSColor>& oldColor, Handlers handlers);
  ~VRTTransientColorPanel() override;

  const VRTColorSwatch& swatch() const { return swatch_; }
  // Where the swatch's upper left corner lies in the panel.
  static QPoint swatchOrigin();

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void follow(QPointF position);
  void reportPlace(QPointF place);
  void takeByKey();
  void finish(bool taken);

  VRTColorSwatch swatch_;
  Handlers handlers_;
  QPoint openedAt_;
  QPointF place_;  // in the swatch
  bool hasOldColor_;
  bool hasReported_ = false;
  bool pressed_ = false;
  bool dragged_ = false;  // the button that opened the panel has moved away from there
  QImage image_;
};
