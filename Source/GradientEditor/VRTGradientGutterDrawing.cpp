// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradientSample.h"
#include "Controls/VRTTheme.h"
#include "Controls/VRTThemeStore.h"
#include "GradientEditor/VRTGradientGutter.h"
#include "Platform/TarnKit/NSBezierPath.h"
#include "Platform/TarnKit/TarnTheme.h"

#include <iterator>

namespace {

constexpr int kShowsMiddle = VRTGradientSmooth;  // the one interpolation whose middle points show unselected

// Markers outside of the view are not drawn, nor are those at no number.
void drawMarker(NSRect view, NSRect marker, bool selected, int index) {
  if (!NSIntersectsRect(view, marker)) return;
  const std::uint32_t atom = selected ? VRTThemeAtomMarkerSelected : VRTThemeAtomMarker;
  DrawThemeAtomAtIndex(marker, VRTTheme::theme(), atom, index, 1.0, 0);
}

NSColor calibrated(const VortoColor& color) {
  return NSColor::colorWithCalibratedRed(color.c1, color.c2, color.c3, color.alpha);
}

}  // namespace

void VRTGradientGutter::drawGutter(NSRect, int sampleIndex, int middleIndex) {
  drawGradient(geometry().strip());
  drawMarkers(sampleIndex, middleIndex);
  if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange)) NSDrawFocusRing(geometry().strip());
}

void VRTGradientGutter::drawMarkers(int sampleIndex, int middleIndex) {
  const NSRect view = bounds();
  const VRTGradientGutterGeometry places = geometry();
  const VRTGradientSelection selected = selection();
  VRTGradientGutterMap samples;
  getSamples(samples);
  for (auto entry = samples.begin(); entry != samples.end(); ++entry) {
    const double position = entry->first;
    const KXGutterSample& record = entry->second;
    const auto next = std::next(entry);
    const bool isSelected = selected.isSample(record);
    const auto drawSample = [&](bool highlighted) {
      drawMarker(view, places.sampleMarker(position), highlighted, sampleIndex);
    };
    const auto drawMiddle = [&](bool highlighted) {
      drawMarker(view, places.middleMarker(position, next->first, record.middle), highlighted, middleIndex);
    };
    calibrated(record.color).set();
    if (next == samples.end()) {
      drawSample(isSelected);
    } else if (isSelected && selected.middle) {
      drawSample(false);
      drawMiddle(true);
    } else if (isSelected) {
      drawSample(true);
      if (record.interpolation == kShowsMiddle) drawMiddle(false);
    } else if (selected.isSample(next->second)) {
      if (!selected.middle && record.interpolation == kShowsMiddle) drawMiddle(false);
      drawSample(false);
    } else {
      drawSample(false);
    }
    const NSRect swatch = places.swatch(position);
    if (NSIntersectsRect(view, swatch)) NSBezierPath::fillRect(swatch);
  }
}
