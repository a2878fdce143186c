// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <memory>

class VRTChannelGradientSample;
class VRTChannelRef;
class VRTGradientEditorDelegate;
class VRTTransientColorPicker;

// What gutters need of the editor that they belong to: it keeps the selection, which they share, and stores the colors
// that are picked in them. Any of it may destroy gutter and editor.
class TARN_EXPORT VRTGradientGutterOwner {
 public:
  // The selected sample, or the middle point of the segment that begins at it. Null selects nothing. A sample that
  // leaves the gradient is selected no longer. When the gradient is replaced, the sample that stands for it in the new
  // one is selected, if there is one.
  virtual void setSelectedSample(VRTChannelGradientSample* sample, bool middleSelected, bool doubleClick) = 0;
  virtual VRTChannelGradientSample* getSelectedSample() const = 0;
  virtual bool getMiddleSelected() const = 0;
  // Refers to the selected sample, and to those that come to stand for it, until another is selected; null at first.
  virtual std::shared_ptr<const VRTChannelRef> getSelection() const = 0;

  // Store the picker's color in the selected sample of that kind: red, green and blue, or red as the opacity, in single
  // precision. With a delegate that is left to it.
  virtual void updateSelectedSampleRGBFrom(VRTTransientColorPicker* picker) = 0;
  virtual void updateSelectedSampleAlphaFrom(VRTTransientColorPicker* picker) = 0;
  virtual VRTGradientEditorDelegate* delegate() const = 0;  // null when there is none any more

  // Repaints everything after a change that was not announced.
  virtual void update() = 0;

 protected:
  ~VRTGradientGutterOwner() = default;
};
