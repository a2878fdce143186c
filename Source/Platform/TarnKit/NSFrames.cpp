// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSFrames.h"

#include "Platform/TarnKit/NSTarnView.h"

#include <QVariant>
#include <algorithm>
#include <cmath>

namespace {

constexpr const char* kMaskProperty = "NSAutoresizingMask";
constexpr double kLargestCoordinate = 16777215;  // of a widget

int whole(double value) {
  return int(std::lround(std::clamp(std::isnan(value) ? 0 : value, -kLargestCoordinate, kLargestCoordinate)));
}

void autoresizeAxis(double& origin, double& size, double growth, bool before, bool middle, bool after) {
  const int flexible = before + middle + after;
  if (flexible == 0) return;
  const double share = growth / flexible;
  if (before) origin += share;
  if (middle) size = std::max(0.0, size + share);
}

}  // namespace

QRect NSGeometryOfFrame(NSRect frame, int superviewHeight, bool flipped) {
  const int height = std::max(0, whole(frame.size.height));
  const int y = whole(frame.origin.y);
  return {whole(frame.origin.x), flipped ? y : superviewHeight - y - height, std::max(0, whole(frame.size.width)),
          height};
}

NSRect NSFrameOfGeometry(const QRect& geometry, int superviewHeight, bool flipped) {
  const int y = flipped ? geometry.y() : superviewHeight - geometry.y() - geometry.height();
  return NSMakeRect(geometry.x(), y, geometry.width(), geometry.height());
}

NSRect NSAutoresizedFrame(NSRect frame, std::uint32_t mask, double growthX, double growthY) {
  autoresizeAxis(frame.origin.x, frame.size.width, growthX, mask & NSViewMinXMargin, mask & NSViewWidthSizable,
                 mask & NSViewMaxXMargin);
  autoresizeAxis(frame.origin.y, frame.size.height, growthY, mask & NSViewMinYMargin, mask & NSViewHeightSizable,
                 mask & NSViewMaxYMargin);
  return frame;
}

std::uint32_t NSAutoresizingMaskOf(const QWidget& widget) {
  return widget.property(kMaskProperty).toUInt();
}

void NSSetAutoresizingMask(QWidget& widget, std::uint32_t mask) {
  widget.setProperty(kMaskProperty, mask);
}

// The superview's layoutSize_ is what the geometry was computed for, even while the superview itself has another size
// already.
NSRect NSGetFrame(const QWidget& widget) {
  const auto* superview = widget.isWindow() ? nullptr : dynamic_cast<const NSTarnView*>(widget.parentWidget());
  const bool flipped = !superview || superview->isFlipped();
  return NSFrameOfGeometry(widget.geometry(), superview ? superview->layoutSize_.height() : 0, flipped);
}

void NSSetFrame(QWidget& widget, NSRect frame) {
  auto* superview = widget.isWindow() ? nullptr : dynamic_cast<NSTarnView*>(widget.parentWidget());
  if (superview) superview->layOutSubviews();
  const bool flipped = !superview || superview->isFlipped();
  const QRect geometry = NSGeometryOfFrame(frame, superview ? superview->layoutSize_.height() : 0, flipped);
  auto* view = dynamic_cast<NSTarnView*>(&widget);
  if (view && view->wantedSize_ != geometry.size()) {
    view->wantedSize_ = geometry.size();
    view->updateGeometry();
  }
  widget.setGeometry(geometry);
  if (view) view->layOutSubviews();
}
