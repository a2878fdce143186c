// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Viewer/ByteLook.h"
#include "Host/Viewer/PicturePyramid.h"
#include "Host/Viewer/ViewSettings.h"

#include <QImage>
#include <QRect>

namespace host {

// What is behind transparent pixels: squares of two colors, `cell` device pixels wide, from the picture's corner on; or
// one color twice.
struct DisplayGround {
  QRgb light = qRgb(255, 255, 255);
  QRgb dark = qRgb(255, 255, 255);
  int cell = 1;
  bool operator==(const DisplayGround&) const = default;
};

// What of a picture the screen shows, in device pixels.
struct DisplayPlace {
  QRect place;    // where the whole of it lies
  QRect visible;  // what is wanted of that; within it
  bool operator==(const DisplayPlace&) const = default;
};

// A picture as the screen shows it: opaque pixels of the size of `place.visible`. A bitmap of another size than the
// place is sampled by areas (AxisSampling), from a level of the pyramid where it is much larger. Where nothing is to be
// converted, samples are rounded to the nearest of 8 bits; values outside 0 to 1 are cut, and colors above their alpha
// to it. `colors` have been made for the view. Throws Failure when memory runs out.
QImage displayImage(PicturePyramid& pyramid, const DisplayPlace& place, const DisplayGround& ground,
                    ChannelView channels, const ColorWay& colors);

}  // namespace host
