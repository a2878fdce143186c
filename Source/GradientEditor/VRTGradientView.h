// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTPortReference.h"
#include "GradientEditor/VRTGradientStripPixels.h"
#include "Platform/TarnKit/NSColor.h"
#include "Platform/TarnKit/NSTarnView.h"
#include "Ports/VRTPorts.h"

#include <memory>

class NSBitmapImageRep;
class NSImage;
class VRTChannelGradient;

// The gradient of the port's current value; null for a null or empty port.
VRTChannelGradient* VRTGradientChannelOfPort(const VRTGradientPort* port);

// Paints the gradient of a port as a horizontal strip in a recessed frame: the large preview of the gradient editor,
// and the base of its gutters.
//
// The strip is evaluated once per change and size, one row of one pixel a point; drawing composites the cached bitmap.
// Without a gradient (no port, no value) the inside of the frame is a flat light color.
class VRTGradientView : public NSTarnView {
 public:
  explicit VRTGradientView(NSRect frame, QWidget* parent = nullptr);
  ~VRTGradientView() override;

  void setGradientPort(VRTGradientPort* port);     // not retained; nothing is redrawn
  VRTChannelGradient* getGradientChannel() const;  // of the port's current value, or null
  void setRenderMode(std::int32_t mode);           // a VRTGradientRenderMode; premultiplied at first
  std::int32_t renderMode() const { return _renderMode; }
  virtual void update();  // call it after any change of the gradient: the strip is evaluated again at the next drawing

  void drawRect(NSRect dirty) override;
  // Draws the frame into the rectangle and the strip 2 points inside it. A flipped view draws the strip on its own
  // lowest points, 2 above the edge: give it a rectangle that ends there.
  void drawGradient(NSRect rect);
  // Makes the cached strip one of that size, up to date with the gradient. Fractions of points are cut off. Without a
  // gradient it becomes transparent and stays out of date.
  void updateImage(NSSize size);
  void allocateImage(NSSize size);
  const NSBitmapImageRep* gradientBitmap() const { return _pGradientRep.get(); }  // the cached strip; null at first

  QString accessibilityLabel() const override;

 protected:
  std::shared_ptr<VRTGradientPort> gradientPort() const { return _pGradientPort.lock(); }

 private:
  void fillBitmap();

  VRTObjectReference<VRTGradientPort> _pGradientPort;
  std::shared_ptr<NSImage> _pGradientImage;
  std::shared_ptr<NSBitmapImageRep> _pGradientRep;
  NSColor _pCheckerColor;
  std::int32_t _renderMode = VRTGradientRenderPremultiplied;
  bool _gradientOutOfDate = true;
};
