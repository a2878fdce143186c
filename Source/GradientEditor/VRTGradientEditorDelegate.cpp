// SPDX-License-Identifier: BSD-3-Clause
#include "GradientEditor/VRTGradientEditorDelegate.h"

VRTGradientEditorDelegate::VRTGradientEditorDelegate()
    : liveness_(std::make_shared<VRTGradientEditorDelegate*>(this)) {}

VRTGradientEditorDelegate::~VRTGradientEditorDelegate() {
  *liveness_ = nullptr;
}

void VRTGradientEditorDelegate::setSelectedSample(VRTChannelGradientSample*, bool, bool) {}

void VRTGradientEditorDelegate::updateSelectedSampleRGBFrom(VRTTransientColorPicker*) {}

void VRTGradientEditorDelegate::updateSelectedSampleAlphaFrom(VRTTransientColorPicker*) {}
