// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/StateKind.h"
#include "Platform/Foundation/PropertyList.h"

#include <QImage>
#include <QPalette>

namespace host {

// What a state looks like, opaque, in that many pixels at a ratio of pixels to points: a gradient over a checkerboard;
// of levels the curves, and below them a ramp from black to white that went through them. A state that is none gives a
// picture without either.
QImage pictureOfState(StateKind kind, const PropertyList& state, QSize pixels, double ratio, const QPalette& palette);

}  // namespace host
