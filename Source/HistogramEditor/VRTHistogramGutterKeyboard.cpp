// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelHistogram.h"
#include "HistogramEditor/VRTHistogramGutter.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <algorithm>
#include <cmath>

// The keyboard and assistive technology.

namespace {

constexpr double kKeyStep = 0.01;
constexpr double kFineKeyStep = 0.001;

}  // namespace

std::vector<VRTHistogramGutter::Handle> VRTHistogramGutter::handlesFromLeft() const {
  std::vector<Handle> order;
  const std::vector<Handle> present = handles();
  for (const Handle handle : {BlackHandle, GammaHandle, WhiteHandle}) {
    if (std::find(present.begin(), present.end(), handle) != present.end()) order.push_back(handle);
  }
  return order;
}

void VRTHistogramGutter::setFocusedHandle(Handle handle) {
  focusedHandle_ = handle;
  update();
}

bool VRTHistogramGutter::focusNextPrevChild(bool next) {
  const std::vector<Handle> order = handlesFromLeft();
  const auto focused = std::find(order.begin(), order.end(), focusedHandle_);
  const bool isLast = next ? focused + 1 >= order.end() : focused == order.begin();
  if (!hasFocus() || !getHistogramChannel() || focused == order.end() || isLast) {
    return NSTarnView::focusNextPrevChild(next);
  }
  gesture_.loseKeys();
  showsFocus_ = true;
  setFocusedHandle(next ? *(focused + 1) : *(focused - 1));
  return true;
}

void VRTHistogramGutter::focusInEvent(QFocusEvent* event) {
  NSTarnView::focusInEvent(event);
  const std::vector<Handle> order = handlesFromLeft();
  if (event->reason() == Qt::TabFocusReason) focusedHandle_ = order.front();
  if (event->reason() == Qt::BacktabFocusReason) focusedHandle_ = order.back();
  if (focusedHandle_ == NoHandle) focusedHandle_ = order.front();
  showsFocus_ = event->reason() != Qt::MouseFocusReason;
  setNeedsDisplay(true);
}

void VRTHistogramGutter::focusOutEvent(QFocusEvent* event) {
  NSTarnView::focusOutEvent(event);
  setNeedsDisplay(true);
  gesture_.loseKeys();
}

void VRTHistogramGutter::keyDown(QKeyEvent& event) {
  if (!useKey(event)) NSTarnView::keyDown(event);
}

bool VRTHistogramGutter::useKey(const QKeyEvent& event) {
  if (!gesture_.catchUp()) return true;
  const VRTChannelHistogram* channel = getHistogramChannel();
  const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
  if (!channel || focusedHandle_ == NoHandle) return false;
  if (modifiers != Qt::NoModifier && modifiers != Qt::ShiftModifier) return false;
  const double step = modifiers == Qt::ShiftModifier ? kFineKeyStep : kKeyStep;
  double position = positionOf(focusedHandle_, *channel);
  switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
      position -= step;
      break;
    case Qt::Key_Right:
    case Qt::Key_Up:
      position += step;
      break;
    case Qt::Key_Home:
      position = 0;
      break;
    case Qt::Key_End:
      position = 1;
      break;
    default:
      return false;
  }
  if (!gesture_.keysMayAct()) return true;
  const bool hasNoRange = positionOf(BlackHandle, *channel) == positionOf(WhiteHandle, *channel);
  if (focusedHandle_ == GammaHandle && hasNoRange) return true;
  showsFocus_ = true;
  moveByKey(focusedHandle_, position, event.key());
  return true;
}

// Announces nothing when nothing would change: the same steps on a copy tell.
void VRTHistogramGutter::moveByKey(Handle handle, double position, int key) {
  VRTChannelHistogram copy(*getHistogramChannel());
  const double before = valueOf(handle, copy);
  setPositionOf(handle, position, copy);
  if (valueOf(handle, copy) == before || !gesture_.hold(key, histogramPort())) return;
  changeChannel([&](VRTChannelHistogram& channel) { setPositionOf(handle, position, channel); });
}

void VRTHistogramGutter::keyReleaseEvent(QKeyEvent* event) {
  if (event->isAutoRepeat() || !gesture_.letGo(event->key())) return NSTarnView::keyReleaseEvent(event);
  event->accept();
}

std::vector<NSAccessibilityElement> VRTHistogramGutter::accessibilityElements() const {
  std::vector<NSAccessibilityElement> elements;
  const VRTChannelHistogram* channel = getHistogramChannel();
  if (!channel) return elements;
  for (const Handle handle : handlesFromLeft()) {
    NSAccessibilityElement element;
    element.name = nameOf(handle);
    element.value = valueOf(handle, *channel);
    element.maximum = largestValueOf(handle);
    element.frame = geometry().handle(positionOf(handle, *channel));
    element.selected = handle == focusedHandle_;
    elements.push_back(element);
  }
  return elements;
}

void VRTHistogramGutter::setAccessibilityValue(std::size_t element, double value) {
  const std::vector<Handle> order = handlesFromLeft();
  if (!gesture_.catchUp() || gesture_.isOpen() || !getHistogramChannel()) return;
  if (element >= order.size() || std::isnan(value)) return;
  const Handle handle = order[element];
  const double limited = std::clamp(value, 0.0, largestValueOf(handle));
  const VRTGesture::Alive alive = gesture_.alive();
  if (!gesture_.hold(VRTGesture::kNoKey, histogramPort())) return;
  changeChannel([&](VRTChannelHistogram& channel) { setValueOf(handle, limited, channel); });
  if (alive) gesture_.end();
}

void VRTHistogramGutter::takeAccessibilityFocus(std::size_t element) {
  const std::vector<Handle> order = handlesFromLeft();
  if (element < order.size()) setFocusedHandle(order[element]);
}
