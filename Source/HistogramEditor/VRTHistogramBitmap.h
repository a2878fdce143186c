// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"
#include "Platform/TarnKit/NSBitmapImageRep.h"
#include "Platform/TarnKit/NSImage.h"

#include <memory>

// The picture inside a recessed frame, 2 points wide, of the histogram and the ramp.
constexpr double VRTHistogramFrameWidth = 2;

struct VRTHistogramBitmap {
  std::shared_ptr<NSImage> image;
  std::shared_ptr<NSBitmapImageRep> representation;
};

// An image of that size with one bitmap: whole pixels, fractions cut off, none for negative sizes and NaN; rows padded
// to 16 bytes.
VRTHistogramBitmap VRTMakeHistogramBitmap(NSSize size);

// Where the picture's lower left corner stands in a view with those bounds, for a frame drawn into the rectangle.
NSPoint VRTHistogramPictureOrigin(NSRect rect, NSRect bounds, bool isFlipped);
NSSize VRTHistogramPictureSize(NSRect rect);
