// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/Utf8.h"

namespace host {
namespace {

unsigned char at(std::string_view text, std::size_t index) {
  return static_cast<unsigned char>(text[index]);
}

// The length of the well-formed sequence at a position, 0 when there is none (overlong forms, surrogates and values
// above U+10FFFF are not well formed).
std::size_t sequenceLength(std::string_view text, std::size_t position) {
  const unsigned char first = at(text, position);
  if (first < 0x80) return 1;
  const std::size_t length = first >= 0xC2 && first <= 0xDF   ? 2
                             : first >= 0xE0 && first <= 0xEF ? 3
                             : first >= 0xF0 && first <= 0xF4 ? 4
                                                              : 0;
  if (length == 0 || text.size() - position < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((at(text, position + i) & 0xC0) != 0x80) return 0;
  }
  const unsigned char second = at(text, position + 1);
  const bool overlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
  const bool outside = (first == 0xED && second >= 0xA0) || (first == 0xF4 && second >= 0x90);
  return overlong || outside ? 0 : length;
}

// Bytes of the longest well-formed beginning.
std::size_t validPrefixLength(std::string_view text) {
  std::size_t position = 0;
  while (position < text.size()) {
    const std::size_t length = sequenceLength(text, position);
    if (length == 0) break;
    position += length;
  }
  return position;
}

}  // namespace

std::string validUtf8(std::string_view text) {
  std::string valid;
  for (;;) {
    const std::size_t length = validPrefixLength(text);
    valid += text.substr(0, length);
    if (length == text.size()) return valid;
    valid += "\xEF\xBF\xBD";
    text.remove_prefix(length + 1);
  }
}

std::string printable(std::string_view text) {
  std::string line = validUtf8(text);
  for (char& c : line) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
  }
  return line;
}

std::size_t utf8Length(std::string_view text) {
  std::size_t length = 0;
  for (const char c : text) length += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  return length;
}

}  // namespace host
