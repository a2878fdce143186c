// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/TarnKit/NSTarnButton.h"
#include "Platform/Visibility.h"

// A button's cell that shows another image while the pointer is over the button.
class TARN_EXPORT VRTRolloverButtonCell : public NSTarnButtonCell {
 public:
  using NSTarnButtonCell::NSTarnButtonCell;

  // Empty: the same image as ever.
  void setRolloverImageSource(std::optional<TarnThemeImageSource> source);
  const std::optional<TarnThemeImageSource>& rolloverImageSource() const { return rolloverSource_; }

 protected:
  const std::optional<TarnThemeImageSource>& currentImageSource() const override;

 private:
  std::optional<TarnThemeImageSource> rolloverSource_;
};
