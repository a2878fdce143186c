// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <memory>

class VRTChannelGradientSample;
class VRTTransientColorPicker;

// What may be told about an editor's selection and take over its colors. Not retained; an editor forgets a delegate
// that is destroyed. A delegate may destroy the editor.
class TARN_EXPORT VRTGradientEditorDelegate {
 public:
  VRTGradientEditorDelegate();
  virtual ~VRTGradientEditorDelegate();
  VRTGradientEditorDelegate(const VRTGradientEditorDelegate&) = delete;
  VRTGradientEditorDelegate& operator=(const VRTGradientEditorDelegate&) = delete;

  // The selection has changed; a double click wants a way to choose the sample's color. The sample may be null.
  virtual void setSelectedSample(VRTChannelGradientSample* sample, bool middleSelected, bool doubleClick);
  // A picker has a color for the selected sample. The editor stores nothing: that is left to the delegate.
  virtual void updateSelectedSampleRGBFrom(VRTTransientColorPicker* picker);
  virtual void updateSelectedSampleAlphaFrom(VRTTransientColorPicker* picker);

 private:
  friend class VRTGradientEditor;
  std::shared_ptr<VRTGradientEditorDelegate*> liveness_;  // holds null once the delegate is destroyed
};
