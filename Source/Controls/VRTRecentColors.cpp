// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTRecentColors.h"

// Never destroyed: pickers may close when static objects are gone.
VRTRecentColors& VRTRecentColors::ofKind(VRTColorSwatch::Kind kind) {
  static auto& colors = *new VRTRecentColors;
  static auto& grays = *new VRTRecentColors;
  return kind == VRTColorSwatch::Kind::color ? colors : grays;
}

void VRTRecentColors::add(const NSColor& color) {
  std::erase_if(colors_, [&](const NSColor& old) { return VRTLevelsOfColor(old) == VRTLevelsOfColor(color); });
  colors_.insert(colors_.begin(), color);
  if (colors_.size() > kMost) colors_.pop_back();
}
