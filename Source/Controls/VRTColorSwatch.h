// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/TarnKit/NSColor.h"

#include <QImage>
#include <QPointF>
#include <QSize>

// The picture of a color picker: which color lies where. Places are in points from the upper left corner, and are
// limited to the picture; the first and last row and column show the exact ends of their ranges.
class VRTColorSwatch {
 public:
  enum class Kind { color, grayscale };

  explicit VRTColorSwatch(Kind kind) : kind_(kind) {}

  // Color: a column of grays, white on top, then hues from left to right: from white on top over the pure hue to black.
  // Grayscale: black on the left to white on the right.
  QSize size() const;
  NSColor colorAt(QPointF place) const;
  // A place that shows the color, or the nearest kind of it: colors that are neither light nor dark shades of a hue
  // have none.
  QPointF placeOf(const NSColor& color) const;
  QPointF limited(QPointF place) const;
  QImage image(double devicePixelRatio) const;

 private:
  Kind kind_;
};
