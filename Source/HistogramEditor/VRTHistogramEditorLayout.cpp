// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramEditorLayout.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kInset = 3;  // a gutter's margin less the width of a frame
constexpr double kGutterHeight = 10;
constexpr double kGradientHeight = 16;
constexpr double kPopUpHeight = 22;
constexpr double kPopUpGap = 5;

}  // namespace

VRTHistogramEditorLayout::VRTHistogramEditorLayout(NSSize panel, bool hasSides) {
  const double framedWidth = std::max(0.0, panel.width - 2 * kInset);
  double y = 0;
  const auto row = [&](double x, double width, double height) {
    const NSRect rect = NSMakeRect(x, y, width, height);
    y += height;
    return rect;
  };
  gutterOut = row(0, panel.width, kGutterHeight);
  gradient = row(kInset, framedWidth, kGradientHeight);
  gutterIn = row(0, panel.width, kGutterHeight);
  histogram = row(kInset, framedWidth, std::max(0.0, panel.height - kPopUpHeight - kPopUpGap - y));
  y += kPopUpGap;
  const double sideWidth = hasSides ? std::max(0.0, std::floor((framedWidth - kPopUpGap) / 2)) : 0;
  sidePopUp = NSMakeRect(kInset + framedWidth - sideWidth, y, sideWidth, kPopUpHeight);
  popUp = row(kInset, framedWidth - sideWidth - (hasSides ? kPopUpGap : 0), kPopUpHeight);
}
