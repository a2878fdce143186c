#pragma once

#include "Platform/Visibility.h"

#include <QString>

// Texts that people read, in their language, from the table "Localizable" of the framework's bundle.

// The entry for an English text, or that text itself. Texts with placeholders have them as QString::arg() takes them.
TARN_EXPORT QString VRTLocalizedText(const char* english);
// The entry for a key that is no text; empty when there is none.
TARN_EXPORT QString VRTLocalizedTitle(const char* key);
