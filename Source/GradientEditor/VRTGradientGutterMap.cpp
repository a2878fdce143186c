// SPDX-License-Identifier: BSD-3-Clause
#include "GradientEditor/VRTGradientGutterMap.h"

#include <iterator>

VRTGradientGutterMap::const_iterator VRTHitTestGradientGutter(const VRTGradientGutterMap& map,
                                                              const VRTGradientGutterGeometry& geometry,
                                                              const VRTGradientSelection& selection, NSPoint point,
                                                              bool* hitMiddle) {
  for (auto entry = map.begin(); entry != map.end(); ++entry) {
    if (NSPointInRect(point, geometry.sampleMarker(entry->first))) return entry;
    const auto next = std::next(entry);
    if (next == map.end()) continue;
    const bool besideSelection =
        selection.isSample(entry->second) || (!selection.middle && selection.isSample(next->second));
    if (!besideSelection) continue;
    if (NSPointInRect(point, geometry.middleMarker(entry->first, next->first, entry->second.middle))) {
      *hitMiddle = true;
      return entry;
    }
  }
  return map.end();
}
