// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/Utf8.h"

#include "Platform/Foundation/NSUnicode.h"

namespace host {

std::string validUtf8(std::string_view text) {
  std::string valid;
  for (;;) {
    const std::size_t length = NSValidUTF8Length(text);
    valid += text.substr(0, length);
    if (length == text.size()) return valid;
    valid += "\xEF\xBF\xBD";
    text.remove_prefix(length + 1);
  }
}

std::string printable(std::string_view text) {
  return NSPrintableText(text);
}

std::size_t utf8Length(std::string_view text) {
  std::size_t length = 0;
  for (const char c : text) length += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  return length;
}

}  // namespace host
