// SPDX-License-Identifier: BSD-3-Clause
#include "GradientEditor/VRTGradientGutterRGB.h"

#include "Channels/VRTChannelGradient.h"
#include "Controls/VRTLocalizedText.h"
#include "Controls/VRTPickedColor.h"
#include "GradientEditor/VRTGradientGutterOwner.h"

namespace {

constexpr std::uint32_t kDropOperation = NSDragOperationGeneric;

}  // namespace

VRTGradientGutterRGB::VRTGradientGutterRGB(NSRect frame, QWidget* parent) : VRTGradientGutter(frame, parent) {
  registerForDraggedTypes({NSColorPboardType});
}

VRTChannelGradientFolder* VRTGradientGutterRGB::getFolder() const {
  VRTChannelGradient* channel = getGradientChannel();
  return channel ? &channel->rgbFolder : nullptr;
}

void VRTGradientGutterRGB::getSamples(VRTGradientGutterMap& samples) const {
  const VRTChannelGradientFolder* folder = getFolder();
  if (!folder) return;
  for (VRTChannelBase* child : folder->getDescendants()) {
    auto* sample = dynamic_cast<VRTChannelGradientSampleRGB*>(child);
    if (!sample) continue;
    const VortoColor color(static_cast<float>(sample->red), static_cast<float>(sample->green),
                           static_cast<float>(sample->blue), 1.0f);
    samples[sample->position] = {color, sample->middle, sample->interpolation, sample};
  }
}

void VRTGradientGutterRGB::startColorPicker(const NSEvent& event) {
  VRTTransientColorPicker::popupColorPickerFrom(this, event, pickerAction(), pickerOptions());
}

void VRTGradientGutterRGB::takeColorFromTransientColorPicker(VRTTransientColorPicker* picker) {
  if (VRTGradientGutterOwner* owner = editor()) owner->updateSelectedSampleRGBFrom(picker);
}

std::optional<NSColor> VRTGradientGutterRGB::color() const {
  const VRTGradientGutterOwner* owner = editor();
  const auto* sample = dynamic_cast<VRTChannelGradientSampleRGB*>(owner ? owner->getSelectedSample() : nullptr);
  if (!sample) return std::nullopt;
  return NSColor::colorWithCalibratedRed(sample->red, sample->green, sample->blue, 1.0);
}

void VRTGradientGutterRGB::drawRect(NSRect) {
  drawGutter(bounds(), 0, 2);
}

VRTChannelGradientSample* VRTGradientGutterRGB::sampleUnderColor(const NSDraggingInfo& info) const {
  if (!info.pasteboardHasType(NSColorPboardType)) return nullptr;
  VRTGradientGutterMap samples;
  getSamples(samples);
  bool hitMiddle = false;
  const auto hit = findSampleIn(samples, convertPointFromWindow(info.draggingLocation()), &hitMiddle);
  return hit == samples.end() || hitMiddle ? nullptr : hit->second.sample;
}

std::uint32_t VRTGradientGutterRGB::draggingEntered(const NSDraggingInfo& info) {
  return draggingUpdated(info);
}

std::uint32_t VRTGradientGutterRGB::draggingUpdated(const NSDraggingInfo& info) {
  return sampleUnderColor(info) ? info.draggingSourceOperationMask() & kDropOperation : NSDragOperationNone;
}

bool VRTGradientGutterRGB::performDragOperation(const NSDraggingInfo& info) {
  auto* sample = dynamic_cast<VRTChannelGradientSampleRGB*>(sampleUnderColor(info));
  const std::optional<NSColor> color = info.colorFromPasteboard();
  if (!sample || !color) return false;
  color->getRed(&sample->red, &sample->green, &sample->blue, nullptr);
  if (VRTGradientGutterOwner* owner = editor()) {
    owner->update();
  } else {
    update();
  }
  return true;
}

QString VRTGradientGutterRGB::accessibilityLabel() const {
  return VRTLocalizedText("Color stops");
}

QString VRTGradientGutterRGB::sampleKind() const {
  return VRTLocalizedText("Color stop");
}

QString VRTGradientGutterRGB::descriptionOf(const KXGutterSample& record) const {
  const VortoColor& color = record.color;
  return VRTHexOfColor(NSColor::colorWithCalibratedRed(color.c1, color.c2, color.c3, 1));
}
