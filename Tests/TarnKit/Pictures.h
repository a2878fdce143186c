// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDir>
#include <QImage>
#include <QPixmap>
#include <QTemporaryDir>
#include <QWidget>
#include <cmath>
#include <fstream>
#include <string>

// What a widget paints, in device pixels.
inline QImage pictureOf(QWidget& widget) {
  return widget.grab().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

// The device pixel whose middle is nearest to a point's.
inline QRgb pixelAt(const QImage& image, double ratio, int x, int y) {
  return image.pixel(int((x + 0.5) * ratio), int((y + 0.5) * ratio));
}

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
