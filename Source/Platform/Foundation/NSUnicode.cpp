// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSUnicode.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>

namespace {

// The bytes of ASCII at the front, eight at a time.
std::size_t asciiLength(std::string_view text) {
  std::size_t length = 0;
  for (std::uint64_t word = 0; length + sizeof word <= text.size(); length += sizeof word) {
    std::memcpy(&word, text.data() + length, sizeof word);
    if ((word & 0x8080808080808080) != 0) {
      break;
    }
  }
  while (length < text.size() && static_cast<unsigned char>(text[length]) < 0x80) {
    ++length;
  }
  return length;
}

// The length of the well-formed sequence of several bytes at the front; 0 when there is none.
std::size_t sequenceLength(std::string_view text) {
  const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  const unsigned first = byte(0);
  const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
  if (length == 0 || text.size() < length) {
    return 0;
  }
  // The second byte tells overlong forms, surrogates and what lies beyond the last code point.
  const unsigned lowest = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
  const unsigned highest = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
  if (byte(1) < lowest || byte(1) > highest) {
    return 0;
  }
  for (std::size_t i = 2; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) {
      return 0;
    }
  }
  return length;
}

// The code point of a well-formed sequence.
std::uint32_t codePoint(std::string_view sequence) {
  const auto first = static_cast<unsigned char>(sequence[0]);
  std::uint32_t code = sequence.size() == 1 ? first : first & (0x7FU >> sequence.size());
  for (const char each : sequence.substr(1)) {
    code = code << 6 | (static_cast<unsigned char>(each) & 0x3FU);
  }
  return code;
}

bool isControl(std::uint32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x2028 || code == 0x2029 ||
         (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

std::string escaped(std::uint32_t code) {
  switch (code) {
    case '\n':
      return "\\n";
    case '\t':
      return "\\t";
    case '\r':
      return "\\r";
    default:
      break;
  }
  char digits[8];
  const auto result = std::to_chars(digits, digits + sizeof digits, code, 16);
  return "\\u{" + std::string(digits, result.ptr) + '}';
}

}  // namespace

std::string NSPrintableText(std::string_view text) {
  std::string line;
  while (!text.empty()) {
    const std::size_t length = static_cast<unsigned char>(text[0]) < 0x80 ? 1 : sequenceLength(text);
    const std::string_view next = text.substr(0, length);
    if (length == 0) {
      line += "\uFFFD";
    } else if (const std::uint32_t code = codePoint(next); isControl(code)) {
      line += escaped(code);
    } else {
      line += next;
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return line;
}

std::size_t NSValidUTF8Length(std::string_view text) {
  std::size_t valid = 0;
  for (;;) {
    valid += asciiLength(text.substr(valid));
    const std::size_t length = valid < text.size() ? sequenceLength(text.substr(valid)) : 0;
    if (length == 0) {
      return valid;
    }
    valid += length;
  }
}
