// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/TarnKit/NSColor.h"
#include "Platform/Visibility.h"

// The colors of inspectors, in a light and a dark set. The set follows the lightness of the window color of the
// desktop's palette, or of the widget that is being drawn when it has a palette of its own.
class TARN_EXPORT NSTarnColor {
 public:
  // Which set holds now.
  static bool isDark();

  // The colors of that set, opaque but for focusRingColor().
  static NSColor inspectorBackgroundColor();
  static NSColor inspectorLightAlternatingRowColor();
  static NSColor inspectorDarkAlternatingRowColor();
  static NSColor textColor();
  static NSColor secondaryTextColor();
  static NSColor controlOutlineColor();
  static NSColor selectionColor();
  static NSColor focusRingColor();
};
