// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "GradientEditor/VRTGradientGutter.h"

// The opacity gutter, above the preview: its markers on top, its strip below.
class VRTGradientGutterAlpha : public VRTGradientGutter {
 public:
  using VRTGradientGutter::VRTGradientGutter;

  VRTChannelGradientFolder* getFolder() const override;
  void getSamples(VRTGradientGutterMap& samples) const override;
  void startColorPicker(const NSEvent& event) override;
  void takeColorFromTransientColorPicker(VRTTransientColorPicker* picker) override;
  std::optional<NSColor> color() const override;
  bool isFlipped() const override { return true; }
  void drawRect(NSRect dirty) override;

  QString accessibilityLabel() const override;

 protected:
  QString sampleKind() const override;
  QString descriptionOf(const KXGutterSample& record) const override;
};
