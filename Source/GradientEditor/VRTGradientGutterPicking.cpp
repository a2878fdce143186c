// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradientSample.h"
#include "GradientEditor/VRTGradientGutter.h"
#include "GradientEditor/VRTGradientGutterOwner.h"

// Choosing a sample's color from a pop-up.

namespace {

// Gives the sample the color of its copy; false when it has that color.
bool restoreColor(VRTChannelBase& sample, const VRTChannelBase& copy) {
  if (auto* color = dynamic_cast<VRTChannelGradientSampleRGB*>(&sample)) {
    const auto& from = dynamic_cast<const VRTChannelGradientSampleRGB&>(copy);
    if (color->red == from.red && color->green == from.green && color->blue == from.blue) return false;
    color->red = from.red;
    color->green = from.green;
    color->blue = from.blue;
    return true;
  }
  if (auto* opacity = dynamic_cast<VRTChannelGradientSampleAlpha*>(&sample)) {
    const double alpha = dynamic_cast<const VRTChannelGradientSampleAlpha&>(copy).alpha;
    if (opacity->alpha == alpha) return false;
    opacity->alpha = alpha;
    return true;
  }
  return false;
}

}  // namespace

void VRTGradientGutter::startColorPicker(const NSEvent&) {}

void VRTGradientGutter::takeColorFromTransientColorPicker(VRTTransientColorPicker*) {}

std::optional<NSColor> VRTGradientGutter::color() const {
  return std::nullopt;
}

// What the picker colors; it stays the same when a host replaces the gradient by a copy. Null when nothing of this
// gutter is selected.
std::shared_ptr<const VRTChannelRef> VRTGradientGutter::pickedSample() const {
  return selectedSampleOfFolder() ? editor()->getSelection() : nullptr;
}

VRTTransientColorPicker::Action VRTGradientGutter::pickerAction() {
  const auto picked = pickedSample();
  return [this, alive = gesture_.alive(), picked](VRTTransientColorPicker& picker) {
    if (!alive || !picked || !picked->getChannel()) return;
    if (selectedSampleOfFolder() == picked->getChannel()) takeColorFromTransientColorPicker(&picker);
  };
}

VRTTransientColorPicker::Options VRTGradientGutter::pickerOptions() {
  const auto picked = pickedSample();
  const std::shared_ptr<VRTChannelBase> before(picked ? picked->getChannel()->clone() : nullptr);
  VRTTransientColorPicker::Options options;
  options.oldColor = color();
  options.didEnd = [this, alive = gesture_.alive(), picked, before](bool taken) {
    if (alive && !taken && picked) putColorBack(*picked, *before);
    if (alive) pickerDidEnd();
  };
  return options;
}

// Colors from pickers are rounded to single precision, the old one that a cancelled picker gives back is, too: here its
// last digits return.
void VRTGradientGutter::putColorBack(const VRTChannelRef& picked, const VRTChannelBase& before) {
  VRTChannelGradientSample* sample = selectedSampleOfFolder();
  const VRTGradientGutterOwner* owner = editor();
  if (!sample || sample != picked.getChannel() || !owner || owner->delegate()) return;
  if (!restoreColor(*sample, before)) return;
  const VRTPortChange change(gradientPort());
}

void VRTGradientGutter::pickerDidEnd() {
  if (gesture_.openedBy() == VRTGesture::By::Picker) gesture_.end();
}
