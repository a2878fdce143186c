// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTPickedColor.h"

#include <QImage>
#include <QPointF>
#include <QRect>
#include <QSize>
#include <vector>

class QPainter;

// One field of a color picker: which color lies where in it. Places are in points from its upper left corner and are
// limited to the field; the first and last row and column are the exact ends of their ranges, and every step of a point
// is one of 255.
class VRTColorField {
 public:
  // Square: saturation from left to right, value from the bottom to the top, in the hue of the color.
  // Hues: the pure hues from red on top around to red; Grays: white on top to black; Ramp: black on the left to white.
  enum class Kind { Square, Hues, Grays, Ramp };

  explicit VRTColorField(Kind kind) : kind_(kind) {}

  Kind kind() const { return kind_; }
  QSize size() const;
  // The color becomes that of the place. Hues change the hue alone: a gray stays what it is.
  void pick(QPointF place, VRTPickedColor& color) const;
  void step(QPoint points, VRTPickedColor& color) const;  // the same, from where the color lies
  QPointF placeOf(const VRTPickedColor& color) const;

  // In pixels of the device, each showing the color that is picked there, in whole levels.
  const QImage& image(const VRTPickedColor& color, double devicePixelRatio);
  // The picture in a frame, and the mark of the color, which reaches 4 points beyond the field. Needs an
  // NSGraphicsContext.
  void draw(QPainter& painter, QPoint origin, const VRTPickedColor& color);
  void drawMark(QPainter& painter, QPoint origin, const VRTPickedColor& color) const;
  static constexpr int kMarkMargin = 4;

 private:
  VRTPickedColor picked(QPointF place, VRTPickedColor color) const;

  Kind kind_;
  QImage image_;
  double imageHue_ = 0;
};

// The fields of a picker, side by side: grays, square and hues for colors, one ramp for grays.
class VRTColorSwatch {
 public:
  enum class Kind { color, grayscale };

  explicit VRTColorSwatch(Kind kind);

  struct Place {
    VRTColorField field;
    QRect rect;  // in points of the swatch
  };
  Kind kind() const { return kind_; }
  QSize size() const;
  const std::vector<Place>& fields() const { return fields_; }
  const Place& mainField() const;  // the square or the ramp: what opens under the pointer, and what arrow keys move in
  // The field at a place, or the one nearest to it.
  const Place& fieldAt(QPointF place) const;
  void pick(QPointF place, VRTPickedColor& color) const;
  QPointF placeOf(const VRTPickedColor& color) const;  // in the main field

  void draw(QPainter& painter, QPoint origin, const VRTPickedColor& color);

 private:
  Kind kind_;
  std::vector<Place> fields_;
};
