#include "Editors/VRTEditors.h"

#include "GradientEditor/VRTGradientEditor.h"
#include "HistogramEditor/VRTHistogramEditor.h"

void VRTStartEditors() {
  static const bool started = [] {
    VRTRegisterGradientEditor();
    VRTRegisterHistogramEditor();
    return true;
  }();
  static_cast<void>(started);
}
