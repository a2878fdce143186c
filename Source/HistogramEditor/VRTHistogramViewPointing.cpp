// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTLocalizedText.h"
#include "HistogramEditor/VRTHistogramReadoutView.h"
#include "HistogramEditor/VRTHistogramView.h"
#include "Platform/TarnKit/NSBezierPath.h"
#include "Platform/TarnKit/NSTarnColor.h"

#include <QKeyEvent>
#include <algorithm>
#include <cmath>

// What a histogram tells beside its bars: the level that is pointed at, and what is clipped.

namespace {

constexpr int kReadoutHeight = 27;  // that of the pop-up with its gap
constexpr std::size_t kLargeKeyStep = 10;
constexpr std::int32_t kAlphaChannel = 4;
constexpr double kPointedLineOpacity = 0.85;
// A clipped pixel is seen; from this share on the light does not become brighter.
constexpr double kFaintestLight = 0.4;
constexpr double kShareOfFullLight = 0.02;

}  // namespace

NSRect VRTHistogramView::graph() const {
  const NSPoint origin = VRTHistogramPictureOrigin(bounds(), bounds(), isFlipped());
  const NSSize size = VRTHistogramPictureSize(bounds());
  return {origin, {std::max(0.0, std::floor(size.width)), std::max(0.0, size.height)}};
}

// In the frame, beside the bars of the first and the last bin. Alpha is meant to be full.
void VRTHistogramView::drawClipping() {
  if (selectedChannel() == kAlphaChannel) return;
  const VRTHistogramReadout counted = VRTHistogramReadoutAt(shownCounts(), 0);
  const NSRect inner = graph();
  const auto light = [&](double share, double x) {
    if (share <= 0) return;
    const double opacity = std::min(1.0, kFaintestLight + (1 - kFaintestLight) * share / kShareOfFullLight);
    NSColor::colorWithCalibratedRed(0.93, 0.36, 0.16, opacity).set();
    NSBezierPath::fillRect(NSMakeRect(x, inner.origin.y, VRTHistogramFrameWidth, inner.size.height));
  };
  light(counted.black, inner.origin.x - VRTHistogramFrameWidth);
  light(counted.white, bounds().origin.x + bounds().size.width - VRTHistogramFrameWidth);
}

void VRTHistogramView::drawPointedLevel() {
  const NSRect inner = graph();
  if (!pointedBin_ || inner.size.width <= 0) return;
  const NSColor color = NSTarnColor::selectionColor();
  NSColor::colorWithCalibratedRed(color.redComponent(), color.greenComponent(), color.blueComponent(),
                                  kPointedLineOpacity)
      .set();
  const double x = std::floor(VRTHistogramColumnOfBin(*pointedBin_, inner.size.width));
  NSBezierPath::fillRect(NSMakeRect(inner.origin.x + x, inner.origin.y, 1, inner.size.height));
}

void VRTHistogramView::setPointedBin(std::optional<std::size_t> bin) {
  if (bin) bin = std::min(*bin, VRTHistogramLastBin);
  if (bin == pointedBin_) return;
  pointedBin_ = bin;
  if (bin) keyboardBin_ = *bin;
  setNeedsDisplay(true);
  showReadout();
}

std::optional<VRTHistogramReadout> VRTHistogramView::readout() const {
  if (!pointedBin_) return std::nullopt;
  return VRTHistogramReadoutAt(shownCounts(), *pointedBin_);
}

QString VRTHistogramView::readoutText() const {
  const auto shown = readout();
  return shown ? VRTHistogramReadoutText(*shown, shownBits()) : QString();
}

// Above the view, over the controls that stand there: neither bars nor handles are hidden.
void VRTHistogramView::showReadout() {
  const auto shown = readout();
  const bool hasRoom = parentWidget() && y() >= kReadoutHeight;
  if (!shown || !hasRoom) {
    if (readoutView_) readoutView_->hide();
  } else {
    if (!readoutView_ || readoutView_->parentWidget() != parentWidget()) {
      delete readoutView_;
      readoutView_ = new VRTHistogramReadoutView(parentWidget());
    }
    readoutView_->setReadout(*shown, shownBits());
    readoutView_->setGeometry(x(), y() - kReadoutHeight, width(), kReadoutHeight);
    readoutView_->show();
    readoutView_->raise();
  }
  accessibilityChanged();
}

void VRTHistogramView::mouseMoved(const NSEvent& event) {
  const NSPoint point = convertPointFromWindow(event.locationInWindow());
  const NSRect inner = graph();
  if (!NSPointInRect(point, bounds()) || inner.size.width <= 0) return setPointedBin(std::nullopt);
  setPointedBin(VRTHistogramBinOfColumn(point.x - inner.origin.x, inner.size.width));
}

void VRTHistogramView::mouseExited() {
  setPointedBin(std::nullopt);
}

void VRTHistogramView::keyDown(QKeyEvent& event) {
  const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
  const bool isLarge = modifiers == Qt::ShiftModifier;
  const std::size_t step = isLarge ? kLargeKeyStep : 1;
  if (modifiers != Qt::NoModifier && !isLarge) return NSTarnView::keyDown(event);
  const std::size_t bin = keyboardBin_;
  switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
      return setPointedBin(pointedBin_ ? bin - std::min(bin, step) : bin);
    case Qt::Key_Right:
    case Qt::Key_Up:
      return setPointedBin(pointedBin_ ? bin + step : bin);
    case Qt::Key_Home:
      return setPointedBin(0);
    case Qt::Key_End:
      return setPointedBin(VRTHistogramLastBin);
    case Qt::Key_Escape:
      if (!pointedBin_) break;
      return setPointedBin(std::nullopt);
    default:
      break;
  }
  NSTarnView::keyDown(event);
}

void VRTHistogramView::focusInEvent(QFocusEvent* event) {
  NSTarnView::focusInEvent(event);
  setNeedsDisplay(true);
}

void VRTHistogramView::focusOutEvent(QFocusEvent* event) {
  NSTarnView::focusOutEvent(event);
  setNeedsDisplay(true);
  if (event->reason() != Qt::PopupFocusReason) setPointedBin(std::nullopt);
}

void VRTHistogramView::hideEvent(QHideEvent* event) {
  NSTarnView::hideEvent(event);
  setPointedBin(std::nullopt);
}

std::vector<NSAccessibilityElement> VRTHistogramView::accessibilityElements() const {
  const std::size_t bin = pointedBin_.value_or(keyboardBin_);
  const VRTHistogramReadout shown = VRTHistogramReadoutAt(shownCounts(), bin);
  const NSRect inner = graph();
  NSAccessibilityElement element;
  element.name = VRTLocalizedText("Level of the histogram");
  element.value = static_cast<double>(bin);
  element.maximum = static_cast<double>(VRTHistogramLastBin);
  element.frame =
      NSMakeRect(inner.origin.x + VRTHistogramColumnOfBin(bin, inner.size.width), inner.origin.y, 1, inner.size.height);
  element.selected = true;
  element.description = VRTHistogramReadoutText(shown, shownBits());
  return {element};
}

void VRTHistogramView::setAccessibilityValue(std::size_t element, double value) {
  if (element != 0 || std::isnan(value)) return;
  setPointedBin(static_cast<std::size_t>(std::clamp(value, 0.0, double{VRTHistogramLastBin})));
}
