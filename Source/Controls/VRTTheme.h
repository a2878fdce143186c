// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

class TarnTheme;

// The one theme that the framework's views and controls draw with.
class TARN_EXPORT VRTTheme {
 public:
  // Made on first use from a VRTThemeStore of the framework's bundle, and kept for the life of the process. Never null.
  static TarnTheme* theme();
};
