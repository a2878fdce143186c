// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/CoreFoundation/CFEncodings.h"

#include <map>
#include <optional>
#include <span>
#include <string>

using CFStringTable = std::map<CFUnits, CFUnits>;

// A string table: entries `"key" = "value";` between blanks and comments (// to the end of the line, /* to */). Inside
// quotes \" \\ \' \n \r \t \0 and \U or \u with four hexadecimal digits stand for themselves, line ends may be written
// as they are, and every other backslash is an error. Of equal keys the last counts. Nothing, with line and cause in
// *reason, for any other text.
std::optional<CFStringTable> CFParseStrings(std::span<const UniChar> text, std::string* reason);

// The table in a file: UTF-16 when the file begins with its byte order mark, else UTF-8 with or without one.
std::optional<CFStringTable> CFReadStringsFile(const std::string& path, std::string* reason);
