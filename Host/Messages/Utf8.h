// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

// The text with U+FFFD in place of every byte that is part of no well-formed sequence.
std::string validUtf8(std::string_view text);

// NSPrintableText(), for messages and tables: one line stays one line.
std::string printable(std::string_view text);

// Code points in well-formed text; what tables take as its width.
std::size_t utf8Length(std::string_view text);

}  // namespace host
