// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradient.h"
#include "Controls/VRTLocalizedText.h"
#include "Controls/VRTTheme.h"
#include "Controls/VRTThemeStore.h"
#include "GradientEditor/VRTGradientGutter.h"
#include "Platform/TarnKit/TarnTheme.h"
#include "TarnCore/TCString.h"

#include <QAccessible>
#include <QGuiApplication>

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

// Every sample is a slider from 0 to 1. Samples get names only when they are sorted, so they are told apart by their
// place.
std::vector<NSAccessibilityElement> VRTGradientGutter::accessibilityElements() const {
  VRTGradientGutterMap samples;
  getSamples(samples);
  const VRTGradientSelection selected = selection();
  const QString name = VRTLocalizedText("%1 %2 of %3").arg(sampleKind());
  std::vector<NSAccessibilityElement> elements;
  for (const auto& [position, record] : samples) {
    NSAccessibilityElement element;
    element.name = name.arg(elements.size() + 1).arg(samples.size());
    element.value = position;
    element.frame = geometry().sampleMarker(VRTClampToUnit(position));
    element.selected = selected.isSample(record);
    elements.push_back(element);
  }
  return elements;
}

void VRTGradientGutter::setAccessibilityValue(std::size_t element, double value) {
  if (!gesture_.catchUp() || !getGradientChannel() || !_enabled || gesture_.isOpen()) return;
  VRTGradientGutterMap samples;
  getSamples(samples);
  if (element >= samples.size()) return;
  const auto entry = std::next(samples.begin(), static_cast<std::ptrdiff_t>(element));
  if (!select(entry->second.sample, false, false) || !selectedSampleOfFolder()) return;
  const VRTGesture::Alive alive = gesture_.alive();
  moveByKeyTo(VRTGesture::kNoKey, value);
  if (alive) gesture_.end();
}

void VRTGradientGutter::announceAccessibility() {
  if (!QAccessible::isActive()) return;
  VRTGradientGutterMap samples;
  getSamples(samples);
  std::vector<double> positions;
  for (const auto& entry : samples) positions.push_back(entry.first);
  const std::vector<double> before = std::exchange(announcedPositions_, positions);
  if (before.size() != positions.size()) return accessibilityChanged();
  for (std::size_t i = 0; i < positions.size(); ++i) {
    if (before[i] != positions[i]) accessibilityValueChanged(i);
  }
}

QString VRTGradientGutter::sampleKind() const {
  return VRTLocalizedText("Stop");
}
