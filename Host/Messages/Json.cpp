// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/Json.h"

#include "Host/Messages/Utf8.h"
#include "Platform/Foundation/PropertyList.h"

#include <charconv>
#include <cmath>

namespace host {

void JsonWriter::beginObject() {
  begin('{');
}
void JsonWriter::endObject() {
  end('}');
}
void JsonWriter::beginArray() {
  begin('[');
}
void JsonWriter::endArray() {
  end(']');
}

void JsonWriter::key(std::string_view name) {
  beforeValue();
  quoted(name);
  text_ += ": ";
  afterKey_ = true;
}

void JsonWriter::value(std::string_view text) {
  beforeValue();
  quoted(text);
}

void JsonWriter::value(bool flag) {
  beforeValue();
  text_ += flag ? "true" : "false";
}

void JsonWriter::value(double number) {
  beforeValue();
  const bool isNegativeZero = number == 0 && std::signbit(number);  // "-0" is an integer to many readers
  text_ += isNegativeZero ? "-0.0" : std::isfinite(number) ? numberText(number) : "null";
}

void JsonWriter::value(std::int64_t number) {
  beforeValue();
  text_ += std::to_string(number);
}

void JsonWriter::value(const PropertyList& list) {
  switch (list.type()) {
    case PropertyList::Type::Boolean:
      return value(list.boolValue());
    case PropertyList::Type::Integer:
      beforeValue();
      text_ +=
          list.integerValue() == INT64_MAX ? std::to_string(list.unsignedValue()) : std::to_string(list.integerValue());
      return;
    case PropertyList::Type::Real:
      return value(list.doubleValue());
    case PropertyList::Type::String:
      return value(std::string_view(list.stringValue()));
    case PropertyList::Type::Data:
      return value(std::string_view(hexadecimal(list.bytes())));
    case PropertyList::Type::Date:
      return value(list.dateValue());
    case PropertyList::Type::Uid:
      return value(static_cast<std::int64_t>(list.uidValue()));
    case PropertyList::Type::Array:
      beginArray();
      for (const PropertyList& item : list.items()) value(item);
      return endArray();
    case PropertyList::Type::Dictionary:
      beginObject();
      for (std::size_t i = 0; i < list.entries().size(); ++i) {
        key(list.entries().keyAt(i));
        value(list.entries().valueAt(i));
      }
      return endObject();
  }
}

std::string JsonWriter::take() {
  return std::move(text_) + "\n";
}

void JsonWriter::beforeValue() {
  if (afterKey_) {
    afterKey_ = false;
    return;
  }
  if (hasItems_.empty()) return;
  if (hasItems_.back()) text_ += ',';
  hasItems_.back() = true;
  newLine();
}

void JsonWriter::begin(char bracket) {
  beforeValue();
  text_ += bracket;
  hasItems_.push_back(false);
}

void JsonWriter::end(char bracket) {
  const bool hadItems = hasItems_.back();
  hasItems_.pop_back();
  if (hadItems) newLine();
  text_ += bracket;
}

void JsonWriter::newLine() {
  text_ += '\n';
  text_.append(2 * hasItems_.size(), ' ');
}

void JsonWriter::quoted(std::string_view text) {
  static constexpr char digits[] = "0123456789abcdef";
  text_ += '"';
  const std::string valid = validUtf8(text);
  for (std::size_t i = 0; i < valid.size(); ++i) {
    const char c = valid[i];
    if (c == '"' || c == '\\') {
      text_ += '\\';
      text_ += c;
    } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
      text_ += "\\u00";
      text_ += digits[c >> 4];
      text_ += digits[c & 15];
    } else if (c == '\xC2' && static_cast<unsigned char>(valid[i + 1]) < 0xA0) {  // controls beyond ASCII
      const char low = valid[++i];
      text_ += "\\u00";
      text_ += digits[(low >> 4) & 15];
      text_ += digits[low & 15];
    } else {
      text_ += c;
    }
  }
  text_ += '"';
}

std::string numberText(double number) {
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, number);
  return std::string(buffer, result.ptr);
}

std::string hexadecimal(const std::vector<std::uint8_t>& bytes) {
  static constexpr char digits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

}  // namespace host
