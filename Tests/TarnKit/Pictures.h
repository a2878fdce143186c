// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/TarnKit/NSTarnView.h"
#include "Tests/Support/ChildProcess.h"

// What a widget paints, in device pixels.
inline QImage pictureOf(QWidget& widget) {
  return widget.grab().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

// The device pixel whose middle is nearest to a point's.
inline QRgb pixelAt(const QImage& image, double ratio, int x, int y) {
  return image.pixel(int((x + 0.5) * ratio), int((y + 0.5) * ratio));
}

// A view on a plain ground that draws what a function draws.
class DrawnView : public NSTarnView {
 public:
  DrawnView(NSSize size, bool flipped, std::function<void()> draw, QColor ground = Qt::white)
      : NSTarnView(NSRect{{}, size}), flipped_(flipped), draw_(std::move(draw)) {
    setGround(ground);
  }
  void setGround(QColor ground) {
    QPalette palette;
    palette.setColor(QPalette::Window, ground);
    setPalette(palette);
  }
  bool isFlipped() const override { return flipped_; }
  void drawRect(NSRect dirty) override {
    lastDirty = dirty;
    draw_();
  }
  NSRect lastDirty;

 private:
  bool flipped_;
  std::function<void()> draw_;
};

using TestFolder = TemporaryFolder;
