// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "GradientEditor/VRTGradientGutter.h"

// The color gutter, below the preview: its strip on top, its markers below. Takes dropped colors on its markers.
class VRTGradientGutterRGB : public VRTGradientGutter {
 public:
  explicit VRTGradientGutterRGB(NSRect frame, QWidget* parent = nullptr);

  VRTChannelGradientFolder* getFolder() const override;
  void getSamples(VRTGradientGutterMap& samples) const override;
  void startColorPicker(const NSEvent& event) override;
  void takeColorFromTransientColorPicker(VRTTransientColorPicker* picker) override;
  std::optional<NSColor> color() const override;
  bool isFlipped() const override { return false; }
  void drawRect(NSRect dirty) override;

  // A color may be dropped on a sample's marker, and nowhere else.
  std::uint32_t draggingEntered(const NSDraggingInfo& info) override;
  std::uint32_t draggingUpdated(const NSDraggingInfo& info) override;
  // Stores the color (not its alpha) without a word to the port, and repaints the editor.
  bool performDragOperation(const NSDraggingInfo& info) override;

  QString accessibilityLabel() const override;

 protected:
  QString sampleKind() const override;
  QString descriptionOf(const KXGutterSample& record) const override;

 private:
  VRTChannelGradientSample* sampleUnderColor(const NSDraggingInfo& info) const;
};
