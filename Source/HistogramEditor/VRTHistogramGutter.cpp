// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramGutter.h"

#include "Channels/VRTChannelHistogram.h"
#include "Controls/VRTTheme.h"
#include "Controls/VRTThemeStore.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/TarnKit/NSGraphicsContext.h"
#include "Ports/VRTObjects.h"

#include <QLocale>
#include <QPointer>

// Drawing and the mouse. Everything that tells others may destroy the gutter or replace the levels: what was looked up
// before is not used afterwards.

VRTChannelHistogram* VRTHistogramChannelOfPort(const VRTHistogramPort* port) {
  if (!port) return nullptr;
  const auto value = std::dynamic_pointer_cast<VRTHistogram>(port->rawValue());
  return value ? value->kxChannelHistogram() : nullptr;
}

VRTHistogramGutter::VRTHistogramGutter(NSRect frame, QWidget* parent) : NSTarnView(frame, parent) {
  setFocusPolicy(Qt::StrongFocus);
}

VRTHistogramGutter::~VRTHistogramGutter() {
  makeUpEnd();
}

void VRTHistogramGutter::setHistogramPort(VRTHistogramPort* port) {
  const QPointer<VRTHistogramGutter> self(this);
  const VRTObjectReference<VRTHistogramPort> reference(port);
  if (histogramPort().get() != port) makeUpEnd();
  if (!self) return;
  _pHistogramPort = reference;
  setNeedsDisplay(true);
}

VRTChannelHistogram* VRTHistogramGutter::getHistogramChannel() const {
  return VRTHistogramChannelOfPort(histogramPort().get());
}

void VRTHistogramGutter::update() {
  setNeedsDisplay(true);
  announceAccessibility();
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
  if (!getHistogramChannel()) return;
  const QPointer<VRTHistogramGutter> self(this);
  makeUpEnd();
  const VRTChannelHistogram* channel = self ? getHistogramChannel() : nullptr;
  if (!channel) return;
  const NSPoint point = convertPointFromWindow(event.locationInWindow());
  _startingLocation = {static_cast<float>(point.x), static_cast<float>(point.y)};
  _selectedChannel = handleAt(point, *channel);
  showsFocus_ = false;
  endIsMadeUp_ = false;
  if (_selectedChannel != NoHandle) {
    _startingValue = positionOf(_selectedChannel, *channel);
    focusedHandle_ = _selectedChannel;
    setNeedsDisplay(true);
  }
  beginInteraction();
}

void VRTHistogramGutter::mouseDragged(const NSEvent& event) {
  if (_selectedChannel == NoHandle) return;
  const NSPoint point = convertPointFromWindow(event.locationInWindow());
  const double travel = geometry().valuesOfDistance(point.x - static_cast<double>(_startingLocation.x));
  const double position = travel + _startingValue;
  const Handle handle = _selectedChannel;
  const auto move = [&](VRTChannelHistogram& channel) { setPositionOf(handle, position, channel); };
  if (changeChannel(move)) showValue();
}

void VRTHistogramGutter::mouseUp(const NSEvent&) {
  if (_selectedChannel != NoHandle) setNeedsDisplay(true);
  _selectedChannel = NoHandle;
  showToolTip({}, QString());
  if (endIsMadeUp_) {
    endIsMadeUp_ = false;
    return;
  }
  endInteraction();
}

// Changes the levels of the port between its announcements. False when there are none, or when the gutter has been
// destroyed meanwhile. The levels live at least as long as they are changed.
bool VRTHistogramGutter::changeChannel(const std::function<void(VRTChannelHistogram&)>& change) {
  const QPointer<VRTHistogramGutter> self(this);
  const auto port = histogramPort();
  if (!VRTHistogramChannelOfPort(port.get())) return false;
  {
    const VRTPortChange announced(port);
    const NSObjectRef value = port->rawValue();
    VRTChannelHistogram* channel = VRTHistogramChannelOfPort(port.get());
    if (self && channel) change(*channel);
  }
  if (!self) return false;
  update();
  return true;
}

bool VRTHistogramGutter::beginInteraction() {
  const QPointer<VRTHistogramGutter> self(this);
  const auto port = histogramPort();
  interacting_ = true;
  NSNotificationCenter::defaultCenter().postNotificationName("VortoStartInteraction", port.get());
  return self;
}

void VRTHistogramGutter::endInteraction() {
  const auto port = histogramPort();
  interacting_ = false;
  heldKeys_.clear();
  NSNotificationCenter::defaultCenter().postNotificationName("VortoEndInteraction", port.get());
}

void VRTHistogramGutter::makeUpEnd() {
  if (!interacting_) return;
  endIsMadeUp_ = heldKeys_.empty();
  _selectedChannel = NoHandle;
  endInteraction();
}

void VRTHistogramGutter::hideEvent(QHideEvent* event) {
  NSTarnView::hideEvent(event);
  makeUpEnd();
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
