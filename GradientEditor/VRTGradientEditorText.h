#pragma once

#include <QString>

class VortoString;

inline constexpr const char* VRTFrameworkBundleIdentifier = "org.vorto.framework";

// A text that people read, in their language: the entry of the framework's string table for the English text, or that
// text itself. Texts with placeholders have them as QString::arg() takes them.
QString VRTGradientEditorText(const char* english);
QString VRTTextOfString(const VortoString& text);
