// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Pixels/Bitmaps.h"

#include <QImage>

namespace host {

// A result as the screen shows it: 8 bits, premultiplied, rounded to the nearest. Values outside 0 to 1 are cut, and
// colors above their alpha to it. It has an alpha channel when something is transparent. Null for a layout that effects
// do not exchange.
QImage displayImage(const BitmapRef& bitmap);

}  // namespace host
