// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"

#include <QRect>
#include <cstdint>

class QWidget;

// Arithmetic of frames, without widgets.

// Between a frame and the geometry inside a superview of that height, which counts from the upper left when it is
// flipped. Geometry is in whole points: corners and sizes are rounded; a negative size is 0.
QRect NSGeometryOfFrame(NSRect frame, int superviewHeight, bool flipped);
NSRect NSFrameOfGeometry(const QRect& geometry, int superviewHeight, bool flipped);

// The frame after the superview has grown by that much. What is flexible on an axis shares the growth evenly; where
// nothing is, the frame stays.
NSRect NSAutoresizedFrame(NSRect frame, std::uint32_t mask, double growthX, double growthY);
std::uint32_t NSAutoresizingMaskOf(const QWidget& widget);
