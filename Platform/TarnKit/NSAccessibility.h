#pragma once

#include "Platform/Foundation/NSGeometry.h"

#include <QString>

// One part of a view that assistive technology sees as a slider of its own.
struct NSAccessibilityElement {
  QString name;  // kind and place: "Color stop 2 of 5"
  double value = 0;
  double minimum = 0;
  double maximum = 1;
  NSRect frame;  // in the view's coordinates
  bool selected = false;
};
