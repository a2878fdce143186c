// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"

// Where the parts of the gradient editor stand in its master view, lower left origin, for a panel of some width.
//
// With a gradient: the color row at the bottom, the opacity row on top, the preview between them; the edges of the
// preview and of the gutters' strips are aligned. The outermost line of the opacity row, which its artwork leaves
// empty, is cut by the panel's edge. Without a gradient only the preview is left.
struct VRTGradientEditorLayout {
  VRTGradientEditorLayout(double width, bool hasGradient);

  static double heightOfPanel(bool hasGradient) { return hasGradient ? 75 : 25; }

  NSSize panel;
  NSRect preview;
  NSRect gutterRGB, gutterAlpha;
  NSRect rgbSpread, rgbFlop, alphaSpread, alphaFlop;
};
