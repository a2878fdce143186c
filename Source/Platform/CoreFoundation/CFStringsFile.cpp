// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFStringsFile.h"

#include "Platform/Foundation/NSFiles.h"
#include "Platform/Foundation/PropertyList.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

class StringsParser {
 public:
  explicit StringsParser(std::span<const UniChar> text) : text_(text) {}

  std::optional<CFStringTable> parse() {
    CFStringTable table;
    while (skipBlanks() && !atEnd()) {
      CFUnits key;
      CFUnits value;
      if (!quoted(key, "a quoted key is missing") || !sign('=') || !quoted(value, "a quoted value is missing") ||
          !sign(';')) {
        return std::nullopt;
      }
      table.insert_or_assign(std::move(key), std::move(value));
    }
    if (!error_.empty()) return std::nullopt;
    return table;
  }

  std::string reason() const {
    const auto line = 1 + std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(errorPosition_), '\n');
    return "line " + std::to_string(line) + ": " + error_;
  }

 private:
  bool atEnd() const { return position_ == text_.size(); }
  UniChar peek(std::size_t ahead = 0) const {
    return position_ + ahead < text_.size() ? text_[position_ + ahead] : UniChar{0};
  }

  bool fail(std::string_view cause, std::size_t position) {
    error_ = cause;
    errorPosition_ = position;
    return false;
  }

  // Blanks and comments.
  bool skipBlanks() {
    for (;;) {
      const UniChar unit = peek();
      if (unit == ' ' || unit == '\t' || unit == '\n' || unit == '\r') {
        ++position_;
      } else if (unit == '/' && peek(1) == '/') {
        while (!atEnd() && peek() != '\n') ++position_;
      } else if (unit == '/' && peek(1) == '*') {
        constexpr std::array<UniChar, 2> kEnd = {'*', '/'};
        const auto end = std::search(text_.begin() + static_cast<std::ptrdiff_t>(position_) + 2, text_.end(),
                                     kEnd.begin(), kEnd.end());
        if (end == text_.end()) return fail("the comment is not closed", position_);
        position_ = static_cast<std::size_t>(end - text_.begin()) + kEnd.size();
      } else {
        return true;
      }
    }
  }

  bool sign(char wanted) {
    if (!skipBlanks()) return false;
    if (peek() != static_cast<UniChar>(wanted)) return fail(std::string("'") + wanted + "' is missing", position_);
    ++position_;
    return true;
  }

  bool quoted(CFUnits& content, std::string_view missing) {
    if (!skipBlanks()) return false;
    const std::size_t start = position_;
    if (peek() != '"') return fail(missing, start);
    for (++position_; !atEnd(); ++position_) {
      const UniChar unit = peek();
      if (unit == '"') {
        ++position_;
        return true;
      }
      if (unit != '\\') {
        content.push_back(unit);
      } else if (!escape(content)) {
        return false;
      }
    }
    return fail("the quote is not closed", start);
  }

  // From the backslash to the last unit of the escape.
  bool escape(CFUnits& content) {
    constexpr std::string_view kNames = "\"\\'nrt0";
    constexpr std::string_view kMeanings("\"\\'\n\r\t\0", 7);
    const UniChar name = peek(1);
    if (name == 'U' || name == 'u') return unicodeEscape(content);
    const std::size_t index = name < 0x80 && name != 0 ? kNames.find(static_cast<char>(name)) : std::string_view::npos;
    if (index == std::string_view::npos) return fail("unknown escape", position_);
    content.push_back(static_cast<UniChar>(kMeanings[index]));
    ++position_;
    return true;
  }

  bool unicodeEscape(CFUnits& content) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    constexpr std::size_t kDigitCount = 4;
    unsigned value = 0;
    for (std::size_t i = 0; i < kDigitCount; ++i) {
      const UniChar unit = peek(2 + i);
      const UniChar lower = unit >= 'A' && unit <= 'F' ? static_cast<UniChar>(unit + 32) : unit;
      const std::size_t digit = lower < 0x80 ? kDigits.find(static_cast<char>(lower)) : std::string_view::npos;
      if (digit == std::string_view::npos) return fail("four hexadecimal digits are missing", position_);
      value = value * 16 + static_cast<unsigned>(digit);
    }
    content.push_back(static_cast<UniChar>(value));
    position_ += 1 + kDigitCount;
    return true;
  }

  std::span<const UniChar> text_;
  std::size_t position_ = 0;
  std::string error_;
  std::size_t errorPosition_ = 0;
};

struct ByteOrderMark {
  std::string_view bytes;
  CFStringEncoding encoding;
};

std::optional<CFUnits> DecodeFile(std::span<const std::uint8_t> bytes) {
  constexpr ByteOrderMark kMarks[] = {{"\xEF\xBB\xBF", kCFStringEncodingUTF8},
                                      {"\xFE\xFF", kCFStringEncodingUTF16BE},
                                      {"\xFF\xFE", kCFStringEncodingUTF16LE}};
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  for (const ByteOrderMark& mark : kMarks) {
    if (text.starts_with(mark.bytes)) return CFDecode(bytes.subspan(mark.bytes.size()), mark.encoding);
  }
  return CFDecode(bytes, kCFStringEncodingUTF8);
}

}  // namespace

std::optional<CFStringTable> CFParseStrings(std::span<const UniChar> text, std::string* reason) {
  StringsParser parser(text);
  std::optional<CFStringTable> table = parser.parse();
  if (!table && reason != nullptr) *reason = parser.reason();
  return table;
}

std::optional<CFStringTable> CFReadStringsFile(const std::string& path, std::string* reason) {
  const std::optional<PropertyList::Bytes> bytes = NSReadFile(path, reason);
  if (!bytes) return std::nullopt;
  const std::optional<CFUnits> text = DecodeFile(*bytes);
  if (!text) {
    if (reason != nullptr) *reason = "the text is neither valid UTF-8 nor UTF-16 with a byte order mark";
    return std::nullopt;
  }
  return CFParseStrings(*text, reason);
}
