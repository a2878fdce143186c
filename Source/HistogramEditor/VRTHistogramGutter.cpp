// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramGutter.h"

#include "Channels/VRTChannelHistogram.h"
#include "Controls/VRTLocalizedText.h"
#include "Controls/VRTTheme.h"
#include "Controls/VRTThemeStore.h"
#include "Platform/TarnKit/NSBezierPath.h"
#include "Platform/TarnKit/TarnTheme.h"
#include "Ports/VRTObjects.h"

#include <QEvent>
#include <QLocale>
#include <cmath>

namespace {

constexpr double kRounding = 1e-9;

}  // namespace

// Drawing and the mouse. Everything that tells others may destroy the gutter or replace the levels: what was looked up
// before is not used afterwards.

VRTChannelHistogram* VRTHistogramChannelOfPort(const VRTHistogramPort* port) {
  if (!port) return nullptr;
  const auto value = std::dynamic_pointer_cast<VRTHistogram>(port->rawValue());
  return value ? value->kxChannelHistogram() : nullptr;
}

VRTHistogramGutter::VRTHistogramGutter(NSRect frame, QWidget* parent) : NSTarnView(frame, parent) {
  setFocusPolicy(Qt::StrongFocus);
  setToolTip(
      VRTLocalizedText("Drag the handles to move them.\nTab goes from handle to handle, the arrow keys move them."));
}

void VRTHistogramGutter::setHistogramPort(VRTHistogramPort* port) {
  if (histogramPort().get() != port) gesture_.lose();
  _pHistogramPort = VRTObjectReference<VRTHistogramPort>(port);
  setNeedsDisplay(true);
}

VRTChannelHistogram* VRTHistogramGutter::getHistogramChannel() const {
  return VRTHistogramChannelOfPort(histogramPort().get());
}

void VRTHistogramGutter::update() {
  setNeedsDisplay(true);
  accessibilityChanged();
}

void VRTHistogramGutter::flagsChanged(const NSEvent&) {}

void VRTHistogramGutter::drawRect(NSRect) {
  const VRTChannelHistogram* channel = getHistogramChannel();
  if (!channel) return;
  // Behind the handle, which is 10 points wide.
  const auto ringOf = [](NSRect rect) { return NSMakeRect(rect.origin.x - 2, 0, 14, rect.size.height + 1); };
  const auto pictureOf = [](Handle handle) { return handle == BlackHandle ? 0 : handle == WhiteHandle ? 2 : 1; };
  for (const Handle handle : handles()) {
    const NSRect rect = geometry().handle(positionOf(handle, *channel));
    if (!NSIntersectsRect(rect, bounds())) continue;  // far outside, or no number
    if (handle == focusedHandle_ && showsFocus_ && hasFocus()) NSDrawFocusRing(ringOf(rect));
    DrawThemeAtomAtIndex(rect, VRTTheme::theme(), VRTThemeAtomLevelsHandle, pictureOf(handle), 1.0, 0);
  }
}

VRTHistogramGutter::Handle VRTHistogramGutter::handleAt(NSPoint point, const VRTChannelHistogram& channel) const {
  Handle hit = NoHandle;
  for (const Handle handle : handles()) {
    if (NSPointInRect(point, geometry().handle(positionOf(handle, channel)))) hit = handle;
  }
  return hit;
}

void VRTHistogramGutter::mouseDown(const NSEvent& event) {
  if (!getHistogramChannel() || !gesture_.clearForPress()) return;
  const VRTChannelHistogram* channel = getHistogramChannel();
  if (!channel) return;
  const NSPoint point = convertPointFromWindow(event.locationInWindow());
  _startingLocation = {static_cast<float>(point.x), static_cast<float>(point.y)};
  _selectedChannel = handleAt(point, *channel);
  showsFocus_ = false;
  if (_selectedChannel != NoHandle) {
    _startingValue = positionOf(_selectedChannel, *channel);
    startingNumber_ = valueOf(_selectedChannel, *channel);
    setFocusedHandle(_selectedChannel);
  }
  gesture_.start(VRTGesture::By::Mouse, histogramPort());
}

void VRTHistogramGutter::mouseDragged(const NSEvent& event) {
  if (_selectedChannel == NoHandle || gesture_.isLost()) return;
  const NSPoint point = convertPointFromWindow(event.locationInWindow());
  // In single precision like the starting location: back on its pixel the distance is 0 at every pixel ratio.
  const double travel = geometry().valuesOfDistance(double(static_cast<float>(point.x) - _startingLocation.x));
  const double position = travel + _startingValue;
  const Handle handle = _selectedChannel;
  const VRTGesture::Alive alive = gesture_.alive();
  changeChannel([&](VRTChannelHistogram& channel) {
    setPositionOf(handle, position, channel);
    // What a gamma loses on the way over its position and back comes back too.
    const bool isRounded = std::abs(valueOf(handle, channel) - startingNumber_) < kRounding;
    if (travel == 0 && isRounded) setValueOf(handle, startingNumber_, channel);
  });
  if (alive) showValue();
}

void VRTHistogramGutter::mouseUp(const NSEvent& event) {
  showToolTip({}, QString());
  gesture_.release(event, histogramPort());
}

void VRTHistogramGutter::letGoOfHandle() {
  if (_selectedChannel != NoHandle) setNeedsDisplay(true);
  _selectedChannel = NoHandle;
}

// Changes the levels of the port between its announcements; whoever hears of them may destroy the gutter. Nothing when
// there are none. The levels live at least as long as they are changed.
void VRTHistogramGutter::changeChannel(const std::function<void(VRTChannelHistogram&)>& change) {
  const VRTGesture::Alive alive = gesture_.alive();
  const auto port = histogramPort();
  if (!VRTHistogramChannelOfPort(port.get())) return;
  {
    const VRTPortChange announced(port);
    const NSObjectRef value = port->rawValue();
    VRTChannelHistogram* channel = VRTHistogramChannelOfPort(port.get());
    if (alive && channel) change(*channel);
  }
  if (alive) update();
}

void VRTHistogramGutter::hideEvent(QHideEvent* event) {
  NSTarnView::hideEvent(event);
  gesture_.lose();
}

void VRTHistogramGutter::changeEvent(QEvent* event) {
  NSTarnView::changeEvent(event);
  if (event->type() == QEvent::EnabledChange && !isEnabled()) gesture_.lose();
}

// The value of what is dragged, above its handle.
void VRTHistogramGutter::showValue() {
  const VRTChannelHistogram* channel = getHistogramChannel();
  if (!channel || _selectedChannel == NoHandle) return;
  const NSRect rect = geometry().handle(positionOf(_selectedChannel, *channel));
  const QString value = locale().toString(valueOf(_selectedChannel, *channel), 'f', 3);
  const NSPoint top = {rect.origin.x + rect.size.width / 2, rect.origin.y + rect.size.height};
  showToolTip(top, QStringLiteral("%1 %2").arg(nameOf(_selectedChannel), value));
}

std::optional<QCursor> VRTHistogramGutter::cursorAtPoint(NSPoint point) const {
  const VRTChannelHistogram* channel = getHistogramChannel();
  if (!channel) return std::nullopt;
  if (_selectedChannel != NoHandle || handleAt(point, *channel) != NoHandle) return QCursor(Qt::SizeHorCursor);
  return std::nullopt;
}
