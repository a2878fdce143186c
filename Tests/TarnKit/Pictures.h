// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/TarnKit/NSTarnView.h"

#include <QDir>
#include <QImage>
#include <QPixmap>
#include <QTemporaryDir>
#include <QWidget>
#include <cmath>
#include <fstream>
#include <functional>
#include <string>
#include <utility>

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

// A folder of its own for files, removed afterwards.
class TestFolder {
 public:
  std::string path(const std::string& name) const {
    return folder_.filePath(QString::fromStdString(name)).toStdString();
  }
  std::string write(const std::string& name, const std::string& text) const {
    QDir().mkpath(QString::fromStdString(path(name)).section('/', 0, -2));
    std::ofstream(path(name)) << text;
    return path(name);
  }

 private:
  QTemporaryDir folder_;
};
