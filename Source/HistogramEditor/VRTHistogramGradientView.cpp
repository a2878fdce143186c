// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramGradientView.h"

#include "Controls/VRTLocalizedText.h"
#include "Controls/VRTTheme.h"
#include "Controls/VRTThemeStore.h"
#include "HistogramEditor/VRTHistogramGraph.h"
#include "Platform/TarnKit/TarnTheme.h"

#include <QPaintEvent>

VRTHistogramGradientView::VRTHistogramGradientView(NSRect frame, QWidget* parent) : NSTarnView(frame, parent) {}

VRTHistogramGradientView::~VRTHistogramGradientView() = default;

void VRTHistogramGradientView::update() {
  setNeedsDisplay(true);
}

// Always the whole view, clipped to what is out of date: the rectangle is also that of the frame.
void VRTHistogramGradientView::paintEvent(QPaintEvent*) {
  QPaintEvent whole(rect());
  NSTarnView::paintEvent(&whole);
}

void VRTHistogramGradientView::drawRect(NSRect rect) {
  if (rect.size.height <= VRTHistogramFrameWidth) return;
  DrawNinePartElementAtIndex(rect, VRTTheme::theme(), VRTThemeAtomWell, 0, 1.0, 0);
  updateImage(VRTHistogramPictureSize(rect));
  _pGradient.image->compositeToPoint(VRTHistogramPictureOrigin(rect, bounds(), isFlipped()), NSCompositeSourceOver);
}

void VRTHistogramGradientView::updateImage(NSSize size) {
  if (!_pGradient.image || !NSEqualSizes(_pGradient.image->size(), size)) {
    allocateImage(size);
    _gradientOutOfDate = true;
  }
  if (!_gradientOutOfDate || !_pGradient.representation) return;
  VRTPaintGreyRamp(*_pGradient.representation);
  _gradientOutOfDate = false;
}

void VRTHistogramGradientView::allocateImage(NSSize size) {
  if (_pGradient.image && NSEqualSizes(_pGradient.image->size(), size)) return;
  _pGradient = VRTMakeHistogramBitmap(size);
}

QString VRTHistogramGradientView::accessibilityLabel() const {
  return VRTLocalizedText("Grey ramp");
}
