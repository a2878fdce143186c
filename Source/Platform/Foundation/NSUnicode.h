// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <cstddef>
#include <string>
#include <string_view>

// The bytes of the longest prefix that is well-formed UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF,
// no sequence that is cut off. The text is UTF-8 when that is all of it.
TARN_EXPORT std::size_t NSValidUTF8Length(std::string_view text);

// A text of unknown origin as one line for a terminal: control characters (of ASCII and of Latin 1, line and paragraph
// separators, those that turn the direction of writing) as \n, \t, \r or \u{HEX}, and U+FFFD in place of every byte
// that is part of no well-formed sequence.
TARN_EXPORT std::string NSPrintableText(std::string_view text);
