// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class PropertyList;

namespace host {

// Writes one JSON text, indented by two spaces; the calls mirror the text. Inside an object every value follows a
// key().
class JsonWriter {
 public:
  void beginObject();
  void endObject();
  void beginArray();
  void endArray();
  void key(std::string_view name);
  void value(std::string_view text);  // bytes that are no UTF-8 become U+FFFD
  void value(const char* text) { value(std::string_view(text)); }
  void value(bool flag);
  void value(double number);  // the shortest text that reads back the same, -0.0; null for NaN and infinities
  void value(std::int64_t number);
  // A list as JSON: data as lower-case hexadecimal digits, dates as seconds since 2001, a uid as an integer.
  void value(const PropertyList& list);

  // The finished text with a newline at its end.
  std::string take();

 private:
  void beforeValue();
  void begin(char bracket);
  void end(char bracket);
  void newLine();
  void quoted(std::string_view text);

  std::string text_;
  std::vector<bool> hasItems_;  // of every open object and array
  bool afterKey_ = false;
};

// A number as people and JSON read it: the shortest text that reads back the same, in any locale.
std::string numberText(double number);

std::string hexadecimal(const std::vector<std::uint8_t>& bytes);

}  // namespace host
