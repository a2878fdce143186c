// SPDX-License-Identifier: BSD-3-Clause
#include "GradientEditor/VRTGradientGutterAlpha.h"

#include "Channels/VRTChannelGradient.h"
#include "Controls/VRTLocalizedText.h"
#include "GradientEditor/VRTGradientGutterOwner.h"

#include <QLocale>

VRTChannelGradientFolder* VRTGradientGutterAlpha::getFolder() const {
  VRTChannelGradient* channel = getGradientChannel();
  return channel ? &channel->alphaFolder : nullptr;
}

// The interpolation stays 0, so that the middle points of opacities show only while they are selected.
void VRTGradientGutterAlpha::getSamples(VRTGradientGutterMap& samples) const {
  const VRTChannelGradientFolder* folder = getFolder();
  if (!folder) return;
  for (VRTChannelBase* child : folder->getDescendants()) {
    auto* sample = dynamic_cast<VRTChannelGradientSampleAlpha*>(child);
    if (!sample) continue;
    const auto grey = static_cast<float>(sample->alpha);
    samples[sample->position] = {VortoColor(grey, grey, grey, 1.0f), sample->middle, 0, sample};
  }
}

void VRTGradientGutterAlpha::startColorPicker(const NSEvent& event) {
  VRTTransientColorPicker::popupGrayscalePickerFrom(this, event, pickerAction(), pickerOptions());
}

void VRTGradientGutterAlpha::takeColorFromTransientColorPicker(VRTTransientColorPicker* picker) {
  if (VRTGradientGutterOwner* owner = editor()) owner->updateSelectedSampleAlphaFrom(picker);
}

std::optional<NSColor> VRTGradientGutterAlpha::color() const {
  const VRTGradientGutterOwner* owner = editor();
  const auto* sample = dynamic_cast<VRTChannelGradientSampleAlpha*>(owner ? owner->getSelectedSample() : nullptr);
  if (!sample) return std::nullopt;
  return NSColor::colorWithCalibratedRed(sample->alpha, sample->alpha, sample->alpha, 1.0);
}

void VRTGradientGutterAlpha::drawRect(NSRect) {
  drawGutter(bounds(), 1, 3);
}

QString VRTGradientGutterAlpha::accessibilityLabel() const {
  return VRTLocalizedText("Opacity stops");
}

QString VRTGradientGutterAlpha::sampleKind() const {
  return VRTLocalizedText("Opacity stop");
}

QString VRTGradientGutterAlpha::descriptionOf(const KXGutterSample& record) const {
  return VRTLocalizedText("%1 %").arg(locale().toString(100 * double(record.color.c1), 'f', 0));
}
