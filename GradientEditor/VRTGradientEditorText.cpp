#include "GradientEditor/VRTGradientEditorText.h"

#include "TarnCore/TCString.h"

QString VRTGradientEditorText(const char* english) {
  return VRTTextOfString(VortoString(english, VRTFrameworkBundleIdentifier));
}

QString VRTTextOfString(const VortoString& text) {
  return QString::fromUtf16(reinterpret_cast<const char16_t*>(text.u_str()), static_cast<qsizetype>(text.size()));
}
