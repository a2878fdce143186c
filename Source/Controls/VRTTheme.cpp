// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTTheme.h"

#include "Controls/VRTThemeStore.h"
#include "Platform/TarnKit/TarnTheme.h"

#include <memory>

TarnTheme* VRTTheme::theme() {
  static TarnTheme* const theme = _RegisterThemeProvider(std::make_unique<VRTThemeStore>());
  return theme;
}
