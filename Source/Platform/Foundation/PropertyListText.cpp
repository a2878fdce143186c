// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/PropertyListGuards.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace propertylist {

bool refuse(std::string* reason, std::string text) {
  if (reason != nullptr) {
    *reason = std::move(text);
  }
  return false;
}

std::optional<char32_t> takeCodePoint(std::string_view& text) {
  if (text.empty()) {
    return std::nullopt;
  }
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x80) {
    text.remove_prefix(1);
    return first;
  }
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || text.size() < length) {
    return std::nullopt;
  }
  char32_t code = first & (0x7F >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0) != 0x80) {
      return std::nullopt;
    }
    code = code << 6 | (next & 0x3F);
  }
  static constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (code < smallest[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
    return std::nullopt;
  }
  text.remove_prefix(length);
  return code;
}

const char* faultOfText(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) {
    return "text with a NUL in it";
  }
  while (!text.empty()) {
    if (!takeCodePoint(text)) {
      return "text that is not UTF-8";
    }
  }
  return nullptr;
}

bool isXmlCharacter(char32_t character) {
  return character >= 0x20 ? character != 0xFFFE && character != 0xFFFF
                           : character == '\t' || character == '\n' || character == '\r';
}

std::string xmlReal(double value) {
  if (std::isnan(value)) {
    return "nan";
  }
  if (std::isinf(value)) {
    return value > 0 ? "+infinity" : "-infinity";
  }
  char digits[64];
  const auto [end, error] = std::to_chars(digits, digits + sizeof digits, value);
  (void)error;  // 64 characters hold every double
  return std::string(digits, end);
}

std::optional<std::string> xmlDate(double secondsSince2001) {
  using namespace std::chrono;
  static constexpr sys_days epoch = 2001y / January / 1;
  static constexpr auto earliest = duration_cast<seconds>(sys_days(1y / January / 1) - epoch).count();
  static constexpr auto end = duration_cast<seconds>(sys_days(10000y / January / 1) - epoch).count();
  const double whole = std::floor(secondsSince2001);
  if (!(whole >= static_cast<double>(earliest) && whole < static_cast<double>(end))) {
    return std::nullopt;
  }
  const sys_seconds moment = sys_seconds(epoch) + seconds(static_cast<std::int64_t>(whole));
  const sys_days day = floor<days>(moment);
  const year_month_day date(day);
  const hh_mm_ss time(moment - day);
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()));
  return text;
}

bool isXmlDate(std::string_view text) {
  static constexpr std::string_view form = "dddd-dd-ddTdd:dd:ddZ";
  if (text.size() != form.size()) {
    return false;
  }
  for (std::size_t i = 0; i < form.size(); ++i) {
    const bool digit = text[i] >= '0' && text[i] <= '9';
    if (form[i] == 'd' ? !digit : text[i] != form[i]) {
      return false;
    }
  }
  const auto number = [&](std::size_t at, std::size_t count) {
    int value = 0;
    std::from_chars(text.data() + at, text.data() + at + count, value);
    return value;
  };
  const std::chrono::year_month_day date(std::chrono::year(number(0, 4)),
                                         std::chrono::month(static_cast<unsigned>(number(5, 2))),
                                         std::chrono::day(static_cast<unsigned>(number(8, 2))));
  return date.ok() && number(0, 4) > 0 && number(11, 2) < 24 && number(14, 2) < 60 && number(17, 2) < 60;
}

}  // namespace propertylist
