// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Viewer/ViewSettings.h"

#include <QPointF>
#include <QRect>
#include <QRectF>

// Where pictures lie on the screen. Device pixels count from the upper left corner of the viewer, the picture's pixels
// from its own: pixel (3, 5) covers 3 to 4 and 5 to 6. A picture covers whole device pixels, so that at whole zooms
// each of its pixels does too. Fit leaves `margin` device pixels on every side.
namespace host {

// Where a picture of a size is shown in an area of a size, both in device pixels: in the middle; made smaller to fit,
// or enlarged by a whole factor, so that pixels stay square and sharp.
QRect fittedRect(QSize picture, QSize area);

struct ViewArea {
  QSize picture;  // its pixels
  QSize area;     // device pixels
  int margin = 0;
};

// Where the picture lies by the settings; empty without a picture.
QRect placeOf(const ViewSettings& settings, const ViewArea& view);
// Device pixels a pixel; 0 without a picture.
double zoomOf(const ViewSettings& settings, const ViewArea& view);

// Between device pixels and the picture's for a picture that lies there: each is the other's inverse.
QPointF pictureAt(const QRect& place, QSize picture, QPointF device);
QPointF deviceAt(const QRect& place, QSize picture, QPointF point);

// By another factor, limited to its range; what is at the device point stays there, to the rounding of the place.
ViewSettings zoomedAt(const ViewSettings& settings, const ViewArea& view, double zoom, QPointF device);
// By so many device pixels; Fit becomes the factor that it had. Some of the picture stays in the middle.
ViewSettings panned(const ViewSettings& settings, const ViewArea& view, QPointF device);

// The next factor up or down in a row of those that people know: 1/64, ... 1/3, 1/2, 2/3, 1, 2, 3, ... 64.
double steppedZoom(double zoom, bool isUp);

// Where before ends, in device pixels; and the part of the picture's side that a device point means, 0 to 1.
int splitLine(const ViewSettings& settings, const QRect& place);
double splitAt(const ViewSettings& settings, const QRect& place, QPointF device);

}  // namespace host
