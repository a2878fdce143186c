// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Pixels/Bitmaps.h"

#include <QImage>
#include <QWidget>
#include <functional>
#include <utility>

namespace host {

// Where a picture of a size is shown in an area of a size, both in device pixels: in the middle; made smaller to fit,
// or enlarged by a whole factor, so that pixels stay square and sharp.
QRect fittedRect(QSize picture, QSize area);

// The picture on a quiet ground, a checkerboard behind what is transparent. Made smaller it is averaged, otherwise its
// pixels are those of the screen, at every device pixel ratio.
class PreviewView : public QWidget {
 public:
  explicit PreviewView(QWidget* parent = nullptr);

  void setPicture(const BitmapRef& bitmap);  // null shows none
  const QImage& picture() const { return picture_; }
  // Device pixels per pixel of the picture, at the present size; 0 without a picture.
  double zoom() const;

  // Called when the picture or its zoom is another one.
  void setShown(std::function<void()> shown) { shown_ = std::move(shown); }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return {160, 120}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  QRect deviceRect() const;
  const QImage& scaled(QSize size);

  QImage picture_;
  QImage scaled_;
  std::function<void()> shown_;
};

}  // namespace host
