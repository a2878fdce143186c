// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSUnicode.h"
#include "Platform/Foundation/PropertyListCoding.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>

namespace propertylist {
namespace {

constexpr std::chrono::sys_days kEpoch = std::chrono::year(2001) / std::chrono::January / 1;

constexpr std::uint8_t kSkipped = 0xFE;
constexpr std::uint8_t kForeign = 0xFF;

// What a character of base64 stands for.
constexpr std::array<std::uint8_t, 256> makeSextets() {
  std::array<std::uint8_t, 256> sextets{};
  sextets.fill(kForeign);
  constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (std::size_t i = 0; i < alphabet.size(); ++i) {
    sextets[static_cast<unsigned char>(alphabet[i])] = static_cast<std::uint8_t>(i);
  }
  for (const char each : {' ', '\t', '\n'}) {
    sextets[static_cast<unsigned char>(each)] = kSkipped;
  }
  return sextets;
}
constexpr std::array<std::uint8_t, 256> kSextets = makeSextets();

// One or two "=" and white space, up to the end; the number of "=", or nothing.
std::optional<std::size_t> paddingOf(std::string_view text) {
  std::size_t signs = 0;
  for (const char each : text) {
    if (each == '=') {
      ++signs;
    } else if (kSextets[static_cast<unsigned char>(each)] != kSkipped) {
      return std::nullopt;
    }
  }
  return signs <= 2 ? std::optional(signs) : std::nullopt;
}

bool isDigit(char each) {
  return each >= '0' && each <= '9';
}

// A number's text without the white space and the plus sign before it.
std::string_view numberIn(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  if (text.starts_with('+') && !text.starts_with("+-")) {
    text.remove_prefix(1);
  }
  return text;
}

// Whether a number that no double holds is too large, not too small: its first digit that counts stands before the
// point, once the exponent has moved it.
bool isHuge(std::string_view number) {
  const std::size_t mark = number.find_first_of("eE");
  const std::string_view digits = number.substr(0, mark);
  const std::size_t first = digits.find_first_of("123456789");
  const std::size_t point = std::min(digits.find('.'), digits.size());
  const auto power = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
  const std::int64_t exponent = mark == std::string_view::npos ? 0 : integerAtStart(number.substr(mark + 1));
  return exponent > -power;
}

bool isXmlCharacter(unsigned char byte) {
  return byte >= 0x20 || byte == '\t' || byte == '\n' || byte == '\r';
}

}  // namespace

const char* faultOfText(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) {
    return "text with a NUL in it";
  }
  return NSValidUTF8Length(text) == text.size() ? nullptr : "text that is not UTF-8";
}

const char* faultOfXmlText(std::string_view text) {
  if (const char* fault = faultOfText(text)) {
    return fault;
  }
  bool kept = true;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string_view rest = text.substr(i);
    kept = kept && isXmlCharacter(static_cast<unsigned char>(text[i])) &&
           !(text[i] == '\xEF' && (rest.starts_with("\uFFFE") || rest.starts_with("\uFFFF")));
  }
  return kept ? nullptr : "text with control characters, which XML cannot keep";
}

std::optional<PropertyList> integerFromXml(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) {
    text.remove_prefix(2);
  }
  std::uint64_t magnitude = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude, hexadecimal ? 16 : 10);
  constexpr std::uint64_t mostNegative = std::uint64_t{1} << 63;
  if (text.empty() || error != std::errc() || end != text.data() + text.size() ||
      (negative && magnitude > mostNegative)) {
    return std::nullopt;
  }
  return negative ? PropertyList::integer(static_cast<std::int64_t>(0 - magnitude))
                  : PropertyList::unsignedInteger(magnitude);
}

std::optional<double> realFromXml(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) {
    text.remove_prefix(1);
  }
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return std::isnan(value) ? std::numeric_limits<double>::quiet_NaN() : value;
}

std::optional<double> realAtStart(std::string_view text) {
  const std::string_view number = numberIn(text);
  const std::string_view digits = number.substr(number.starts_with('-') ? 1 : 0);
  if (digits.empty() || !(isDigit(digits[0]) || (digits[0] == '.' && digits.size() > 1 && isDigit(digits[1])))) {
    return std::nullopt;  // also what from_chars would take for a NaN or an infinity
  }
  double value = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (error == std::errc::result_out_of_range) {
    value = isHuge(digits.substr(0, static_cast<std::size_t>(end - digits.data()))) ? HUGE_VAL : 0;
    return std::copysign(value, number.starts_with('-') ? -1.0 : 1.0);
  }
  return value;
}

std::int64_t integerAtStart(std::string_view text) {
  const std::string_view number = numberIn(text);
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  (void)end;
  if (error == std::errc::result_out_of_range) {
    return number.starts_with('-') ? std::numeric_limits<std::int64_t>::min()
                                   : std::numeric_limits<std::int64_t>::max();
  }
  return value;
}

std::optional<double> dateFromXml(std::string_view text) {
  static constexpr std::string_view form = "dddd-dd-ddTdd:dd:ddZ";
  if (text.size() != form.size()) {
    return std::nullopt;
  }
  for (std::size_t i = 0; i < form.size(); ++i) {
    const bool digit = text[i] >= '0' && text[i] <= '9';
    if (form[i] == 'd' ? !digit : text[i] != form[i]) {
      return std::nullopt;
    }
  }
  const auto number = [&](std::size_t at, std::size_t count) {
    int value = 0;
    std::from_chars(text.data() + at, text.data() + at + count, value);
    return value;
  };
  using namespace std::chrono;
  const year_month_day date(year(number(0, 4)), month(static_cast<unsigned>(number(5, 2))),
                            day(static_cast<unsigned>(number(8, 2))));
  const int hour = number(11, 2);
  const int minute = number(14, 2);
  const int second = number(17, 2);
  if (!date.ok() || number(0, 4) == 0 || hour > 23 || minute > 59 || second > 59) {
    return std::nullopt;
  }
  const seconds since = sys_days(date) - kEpoch + hours(hour) + minutes(minute) + seconds(second);
  return static_cast<double>(since.count());
}

std::optional<PropertyList::Bytes> dataFromXml(std::string_view text) {
  PropertyList::Bytes bytes;
  bytes.reserve(text.size() / 4 * 3);
  std::uint32_t bits = 0;
  std::size_t digits = 0;
  std::size_t padding = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::uint8_t sextet = kSextets[static_cast<unsigned char>(text[i])];
    if (sextet < 64) {
      bits = bits << 6 | sextet;
      if (++digits % 4 == 0) {
        bytes.insert(bytes.end(), {static_cast<std::uint8_t>(bits >> 16), static_cast<std::uint8_t>(bits >> 8),
                                   static_cast<std::uint8_t>(bits)});
      }
    } else if (sextet == kForeign) {
      const auto signs = paddingOf(text.substr(i));
      if (!signs) {
        return std::nullopt;
      }
      padding = *signs;
      break;
    }
  }
  if ((digits + padding) % 4 != 0) {
    return std::nullopt;
  }
  if (digits % 4 == 3) {
    bytes.insert(bytes.end(), {static_cast<std::uint8_t>(bits >> 10), static_cast<std::uint8_t>(bits >> 2)});
  } else if (digits % 4 == 2) {
    bytes.push_back(static_cast<std::uint8_t>(bits >> 4));
  }
  return bytes;
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
  static constexpr auto earliest = duration_cast<seconds>(sys_days(1y / January / 1) - kEpoch).count();
  static constexpr auto end = duration_cast<seconds>(sys_days(10000y / January / 1) - kEpoch).count();
  const double whole = std::floor(secondsSince2001);
  if (!(whole >= static_cast<double>(earliest) && whole < static_cast<double>(end))) {
    return std::nullopt;
  }
  const sys_seconds moment = sys_seconds(kEpoch) + seconds(static_cast<std::int64_t>(whole));
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

}  // namespace propertylist
