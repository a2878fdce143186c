// SPDX-License-Identifier: BSD-3-Clause
#include "GradientEditor/VRTGradientEditorLayout.h"

namespace {

constexpr double kRowHeight = 26;
constexpr double kOpacityRow = 50;
constexpr double kButtonColumn = 23;  // right of the gutters
constexpr double kInset = 3;          // of the gutters' strips

constexpr double kButtonWidth = 20;
constexpr double kButtonHeight = 12;

NSRect button(double width, double y) {
  return NSMakeRect(width - kButtonWidth, y, kButtonWidth, kButtonHeight);
}

}  // namespace

VRTGradientEditorLayout::VRTGradientEditorLayout(double width, bool hasGradient)
    : panel{width, heightOfPanel(hasGradient)} {
  const double gutterWidth = width - kButtonColumn;
  const double previewWidth = gutterWidth - 2 * kInset;
  gutterRGB = NSMakeRect(0, 0, gutterWidth, kRowHeight);
  gutterAlpha = NSMakeRect(0, kOpacityRow, gutterWidth, kRowHeight);
  preview = hasGradient ? NSMakeRect(kInset, kRowHeight, previewWidth, kOpacityRow - kRowHeight)
                        : NSMakeRect(kInset, 0, previewWidth, panel.height);
  rgbFlop = button(width, 0);
  rgbSpread = button(width, kButtonHeight + 1);
  alphaFlop = button(width, kOpacityRow);
  alphaSpread = button(width, kOpacityRow + kButtonHeight + 1);
}
