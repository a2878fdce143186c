// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTRolloverButtonCell.h"

void VRTRolloverButtonCell::setRolloverImageSource(std::optional<TarnThemeImageSource> source) {
  rolloverSource_ = source;
  button().update();
}

const std::optional<TarnThemeImageSource>& VRTRolloverButtonCell::currentImageSource() const {
  return rolloverSource_ && button().isEnabled() && button().isRolledOver() ? rolloverSource_ : imageSource();
}
