// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <QString>

class VortoString;

inline constexpr const char* VRTFrameworkBundleIdentifier = "org.vorto.framework";

// Texts that people read, in their language, from the table "Localizable" of the framework's bundle.

// The entry for an English text, or that text itself. Texts with placeholders have them as QString::arg() takes them.
TARN_EXPORT QString VRTLocalizedText(const char* english);
// The entry for a key that is no text; empty when there is none.
TARN_EXPORT QString VRTLocalizedTitle(const char* key);
// The entry for an English text in the table of another bundle, a host's own; or that text itself.
TARN_EXPORT QString VRTLocalizedTextOfBundle(const char* bundleIdentifier, const char* english);
// A text of the core as Qt's widgets take it.
TARN_EXPORT QString VRTTextOfString(const VortoString& text);
