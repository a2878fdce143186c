// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/JsonReader.h"

#include "Host/Texts/TextReader.h"

#include <charconv>
#include <optional>
#include <stdexcept>

namespace host {
namespace {

constexpr int kMaximumDepth = 600;  // an opaque value of the greatest depth, and what is around it

int digitOf(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

void appendUtf8(std::string& text, std::uint32_t code) {
  if (code < 0x80) {
    text += static_cast<char>(code);
    return;
  }
  const int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
  constexpr unsigned char leads[] = {0, 0xC0, 0xE0, 0xF0};
  text += static_cast<char>(leads[more] | (code >> (6 * more)));
  for (int i = more - 1; i >= 0; --i) text += static_cast<char>(0x80 | ((code >> (6 * i)) & 0x3F));
}

class JsonParser {
 public:
  explicit JsonParser(std::string_view text) : text_(text), reader_(text) {}

  PropertyList parse() {
    PropertyList value = readValue(0);
    if (!reader_.atEnd()) reader_.expected("the end of the text");
    return value;
  }

 private:
  PropertyList readValue(int depth) {
    if (depth > kMaximumDepth) TextReader::fail(reader_.place(), "nested too deeply");
    if (++values_ > PropertyListMaximumValues) TextReader::fail(reader_.place(), "too many values");
    switch (reader_.next()) {
      case '{':
        return readObject(depth);
      case '[':
        return readArray(depth);
      case '"':
        return PropertyList::string(readString());
      default:
        return reader_.nextIsNumber() ? readNumber() : readWord();
    }
  }

  PropertyList readObject(int depth) {
    reader_.expect('{');
    PropertyList object;
    if (reader_.takes('}')) return object;
    do {
      const std::string key = readString();
      reader_.expect(':');
      object.set(key, readValue(depth + 1));
    } while (reader_.takes(','));
    reader_.expect('}');
    return object;
  }

  PropertyList readArray(int depth) {
    reader_.expect('[');
    PropertyList::Array items;
    if (!reader_.takes(']')) {
      do items.push_back(readValue(depth + 1));
      while (reader_.takes(','));
      reader_.expect(']');
    }
    return PropertyList::array(std::move(items));
  }

  PropertyList readWord() {
    const std::string_view word = reader_.peekedWord();
    if (word != "true" && word != "false") reader_.expected("a value");
    reader_.word();
    return PropertyList::boolean(word == "true");
  }

  PropertyList readNumber() {
    const std::size_t begin = reader_.place();
    const Quantity quantity = reader_.quantity("a number");
    if (!quantity.unit.empty()) TextReader::fail(begin, "expected a number without a unit");
    std::size_t end = begin;
    while (end < text_.size() &&
           (digitOf(text_[end]) >= 0 || text_[end] == '-' || text_[end] == '.' || text_[end] == '+'))
      ++end;
    const std::string_view digits = text_.substr(begin, end - begin);
    std::int64_t integer = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), integer);
    const bool isInteger = result.ec == std::errc() && result.ptr == digits.data() + digits.size() && digits != "-0";
    return isInteger ? PropertyList::integer(integer) : PropertyList::real(quantity.number);
  }

  std::string readString() {
    if (reader_.next() != '"') reader_.expected("a text in double quotes");
    const std::size_t begin = reader_.place();
    std::string text;
    std::size_t at = begin + 1;
    for (; at < text_.size() && text_[at] != '"'; ++at) {
      if (text_[at] == '\\') {
        at = appendEscaped(text, at);
      } else if (static_cast<unsigned char>(text_[at]) < 0x20) {
        TextReader::fail(at, "a control character in a text");
      } else {
        text += text_[at];
      }
    }
    if (at == text_.size()) TextReader::fail(begin, "a text without an end");
    reader_.skipTo(at + 1);
    return text;
  }

  // Appends what is escaped at the backslash; the place of the last character of it.
  std::size_t appendEscaped(std::string& text, std::size_t at) {
    constexpr std::string_view letters = "\"\\/bfnrt";
    constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
    const char letter = at + 1 < text_.size() ? text_[at + 1] : '\0';
    if (const std::size_t index = letters.find(letter); letter != '\0' && index != std::string_view::npos) {
      text += meanings[index];
      return at + 1;
    }
    auto code = letter == 'u' ? codeAt(at + 2) : std::nullopt;
    std::size_t last = at + 5;
    if (code && *code >= 0xD800 && *code < 0xDC00 && text_.substr(at + 6).starts_with("\\u")) {
      const auto low = codeAt(at + 8);
      if (!low || *low < 0xDC00 || *low > 0xDFFF) TextReader::fail(at, "half of a character");
      code = 0x10000 + ((*code - 0xD800) << 10) + (*low - 0xDC00);
      last = at + 11;
    }
    if (!code || (*code >= 0xD800 && *code < 0xE000) || *code == 0) TextReader::fail(at, "an unknown escape in a text");
    appendUtf8(text, *code);
    return last;
  }

  std::optional<std::uint32_t> codeAt(std::size_t at) const {
    std::uint32_t code = 0;
    for (std::size_t i = at; i < at + 4; ++i) {
      const int digit = i < text_.size() ? digitOf(text_[i]) : -1;
      if (digit < 0) return std::nullopt;
      code = 16 * code + static_cast<std::uint32_t>(digit);
    }
    return code;
  }

  std::string_view text_;
  TextReader reader_;
  std::uint64_t values_ = 0;
};

}  // namespace

PropertyList propertyListOfJson(std::string_view text) {
  return JsonParser(text).parse();
}

PropertyList::Bytes bytesOfHexadecimal(std::string_view digits) {
  PropertyList::Bytes bytes;
  bytes.reserve(digits.size() / 2);
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    const int high = digitOf(digits[i]);
    const int low = i + 1 < digits.size() ? digitOf(digits[i + 1]) : -1;
    if (high < 0 || low < 0) throw std::invalid_argument("no hexadecimal digits");
    bytes.push_back(static_cast<std::uint8_t>(16 * high + low));
  }
  return bytes;
}

}  // namespace host
