// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTRolloverButton.h"

#include "Platform/TarnKit/TarnInterfaceFile.h"

VRTRolloverButton::VRTRolloverButton(NSRect frame, QWidget* parent) : NSTarnButton(frame, parent) {
  setCell(std::make_unique<VRTRolloverButtonCell>(*this));
}

VRTRolloverButtonCell& VRTRolloverButton::rolloverCell() const {
  return static_cast<VRTRolloverButtonCell&>(cell());
}

void VRTRegisterRolloverButton() {
  TarnInterfaceFile::registerClass<VRTRolloverButton>("VRTRolloverButton");
}
