// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"
#include "Platform/Visibility.h"

// Filling and stroking with the current color, edges on device pixels. Outside drawRect nothing happens.
class TARN_EXPORT NSBezierPath {
 public:
  // The whole rectangle.
  static void fillRect(NSRect rect);
  // A line of that width in points, inside the rectangle's edges.
  static void strokeRect(NSRect rect, double lineWidth = 1);
};

// The ring around what has the keyboard, just inside the rectangle.
TARN_EXPORT void NSDrawFocusRing(NSRect rect);
