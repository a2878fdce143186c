// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradient.h"
#include "Controls/VRTLocalizedText.h"
#include "Controls/VRTTheme.h"
#include "Controls/VRTThemeStore.h"
#include "GradientEditor/VRTGradientGutter.h"
#include "Platform/TarnKit/TarnTheme.h"
#include "TarnCore/TCString.h"

#include <QGuiApplication>
#include <iterator>

// What helps people find their way in a gutter: tooltips, the pointer's shape, assistive technology.

void VRTGradientGutter::updateToolTips() {
  removeAllToolTips();
  VRTGradientGutterMap samples;
  getSamples(samples);
  for (const auto& [position, record] : samples) {
    addToolTipRect(geometry().sampleMarker(position), VRTTextOfString(record.sample->getName()));
  }
  if (getGradientChannel() && _enabled) addToolTipRect(geometry().strip(), stripHelp());
}

QString VRTGradientGutter::stripHelp() const {
  return VRTLocalizedText(
      "Click to add a stop, drag stops and middle points to move them.\n"
      "Alt-drag a stop to copy it, drag it off to remove it.\n"
      "Right-click or Control-click a stop to choose its value.");
}

std::optional<QCursor> VRTGradientGutter::cursorAtPoint(NSPoint point) const {
  if (!getGradientChannel() || !_enabled) return std::nullopt;
  if (_pDeleted) return QCursor(Qt::ClosedHandCursor);
  if (_moving != MovingNothing) return QCursor(Qt::SizeHorCursor);
  VRTGradientGutterMap samples;
  getSamples(samples);
  bool hitMiddle = false;
  if (findSampleIn(samples, point, &hitMiddle) == samples.end()) {
    if (point.y < VRTGradientGutterGeometry::kStripBottom) return std::nullopt;
    return QCursor(Qt::CrossCursor);
  }
  const Qt::KeyboardModifiers modifiers = QGuiApplication::keyboardModifiers();
  if (!hitMiddle && modifiers.testFlag(Qt::ControlModifier)) {
    return CursorOfThemeAtomAtIndex(VRTTheme::theme(), VRTThemeAtomCursor, 0);
  }
  if (!hitMiddle && modifiers.testFlag(Qt::AltModifier)) return QCursor(Qt::DragCopyCursor);
  return QCursor(Qt::SizeHorCursor);
}

// Every sample is a slider from 0 to 1, and behind them every middle point. Samples get names only when they are
// sorted, so they are told apart by their place.
std::vector<NSAccessibilityElement> VRTGradientGutter::accessibilityElements() const {
  VRTGradientGutterMap samples;
  getSamples(samples);
  const VRTGradientSelection selected = selection();
  const QString name = VRTLocalizedText("%1 %2 of %3");
  std::vector<NSAccessibilityElement> stops, middles;
  for (auto entry = samples.begin(); entry != samples.end(); ++entry) {
    const auto& [position, record] = *entry;
    NSAccessibilityElement stop;
    stop.name = name.arg(sampleKind()).arg(stops.size() + 1).arg(samples.size());
    stop.description = descriptionOf(record);
    stop.value = position;
    stop.frame = geometry().sampleMarker(VRTClampToUnit(position));
    stop.selected = selected.isSample(record) && !selected.middle;
    stops.push_back(stop);
    const auto next = std::next(entry);
    if (next == samples.end()) continue;
    NSAccessibilityElement middle;
    middle.name = name.arg(VRTLocalizedText("Middle point")).arg(middles.size() + 1).arg(samples.size() - 1);
    middle.value = record.middle;
    middle.frame = geometry().middleMarker(position, next->first, record.middle);
    middle.selected = selected.isSample(record) && selected.middle;
    middles.push_back(middle);
  }
  stops.insert(stops.end(), middles.begin(), middles.end());
  return stops;
}

bool VRTGradientGutter::selectElement(std::size_t element) {
  VRTGradientGutterMap samples;
  getSamples(samples);
  const bool middle = element >= samples.size();
  const std::size_t index = middle ? element - samples.size() : element;
  if (samples.empty() || index >= samples.size() - (middle ? 1 : 0)) return false;
  const auto entry = std::next(samples.begin(), static_cast<std::ptrdiff_t>(index));
  return select(entry->second.sample, middle, false) && selectedSampleOfFolder();
}

void VRTGradientGutter::setAccessibilityValue(std::size_t element, double value) {
  if (!gesture_.catchUp() || !getGradientChannel() || !_enabled || gesture_.isOpen()) return;
  if (!selectElement(element)) return;
  const VRTGesture::Alive alive = gesture_.alive();
  moveByKeyTo(VRTGesture::kNoKey, value);
  if (alive) gesture_.end();
}

void VRTGradientGutter::takeAccessibilityFocus(std::size_t element) {
  if (getGradientChannel() && _enabled && !gesture_.isOpen()) selectElement(element);
}

QString VRTGradientGutter::descriptionOf(const KXGutterSample&) const {
  return {};
}

QString VRTGradientGutter::sampleKind() const {
  return VRTLocalizedText("Stop");
}
