// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTRolloverButtonCell.h"
#include "Platform/TarnKit/NSTarnButton.h"
#include "Platform/Visibility.h"

// A button with a rollover image. In interface files: class "VRTRolloverButton", from VRTStartEditors() on.
class TARN_EXPORT VRTRolloverButton : public NSTarnButton {
 public:
  explicit VRTRolloverButton(NSRect frame, QWidget* parent = nullptr);

  // The cell that draws it.
  VRTRolloverButtonCell& rolloverCell() const;
};

// Makes the class known to interface files that are loaded later.
TARN_EXPORT void VRTRegisterRolloverButton();
