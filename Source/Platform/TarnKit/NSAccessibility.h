// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"
#include "Platform/Visibility.h"

#include <QString>

// One part of a view that assistive technology sees as a slider of its own.
struct TARN_EXPORT NSAccessibilityElement {
  QString name;  // kind and place: "Color stop 2 of 5"
  double value = 0;
  double minimum = 0;
  double maximum = 1;
  NSRect frame;           // in the view's coordinates
  bool selected = false;  // it has the keyboard when the view has
  QString description{};  // what else there is to say, such as its color
};
