// SPDX-License-Identifier: BSD-3-Clause
#include "Editors/VRTEditors.h"

#include "Controls/VRTRolloverButton.h"
#include "GradientEditor/VRTGradientEditor.h"
#include "HistogramEditor/VRTHistogramEditor.h"

void VRTStartEditors() {
  VRTRegisterRolloverButton();
  VRTRegisterGradientEditor();
  VRTRegisterHistogramEditor();
}
