// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTColorSwatch.h"

#include <vector>

// The colors taken last from pickers of a kind, the newest first and each once, while the process lives. Colors that
// show alike (in whole levels) count as one.
class VRTRecentColors {
 public:
  static constexpr std::size_t kMost = 11;

  static VRTRecentColors& ofKind(VRTColorSwatch::Kind kind);

  const std::vector<NSColor>& colors() const { return colors_; }
  void add(const NSColor& color);

 private:
  std::vector<NSColor> colors_;
};
