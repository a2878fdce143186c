// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "HistogramEditor/VRTHistogramBitmap.h"
#include "Platform/TarnKit/NSTarnView.h"

// A ramp from black to white in a recessed frame, against which the handles of the levels gutters are read.
class VRTHistogramGradientView : public NSTarnView {
 public:
  explicit VRTHistogramGradientView(NSRect frame, QWidget* parent = nullptr);
  ~VRTHistogramGradientView() override;

  void update();  // draws again
  bool isOpaque() const override { return false; }
  void drawRect(NSRect rect) override;  // into the rectangle; nothing when it is 2 points high or less
  // Makes the cached ramp one of that size. It is painted once per size.
  void updateImage(NSSize size);
  void allocateImage(NSSize size);
  const NSBitmapImageRep* gradientBitmap() const { return _pGradient.representation.get(); }  // null at first
  QString accessibilityLabel() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  VRTHistogramBitmap _pGradient;
  bool _gradientOutOfDate = true;
};
