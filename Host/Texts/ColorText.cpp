// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/ColorText.h"

#include "Host/Messages/Json.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

namespace host {
namespace {

constexpr const char* kForms = "a color (#rrggbb, a name of CSS, rgb(), hsl() or color(srgb r g b))";

Rgb rgbOfCode(unsigned code) {
  return {(code >> 16) / 255.0, ((code >> 8) & 255) / 255.0, (code & 255) / 255.0};
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

TextColor readCode(TextReader& reader) {
  const std::size_t at = reader.place();
  const std::string_view text = reader.text();
  std::vector<int> digits;
  for (std::size_t i = at + 1; i < text.size() && hexDigit(text[i]) >= 0 && digits.size() < 9; ++i) {
    digits.push_back(hexDigit(text[i]));
  }
  const std::size_t end = at + 1 + digits.size();
  const char next = end < text.size() ? lowered(text.substr(end, 1))[0] : ' ';
  const bool isLetterNext = (next >= '0' && next <= '9') || (next >= 'a' && next <= 'z');
  if ((digits.size() != 3 && digits.size() != 4 && digits.size() != 6 && digits.size() != 8) || isLetterNext) {
    reader.expected("#rgb, #rgba, #rrggbb or #rrggbbaa");
  }
  reader.skipTo(end);
  const std::size_t each = digits.size() <= 4 ? 1 : 2;
  const auto component = [&](std::size_t index) {
    const int value = each == 1 ? 17 * digits[index] : 16 * digits[2 * index] + digits[2 * index + 1];
    return value / 255.0;
  };
  TextColor color{{component(0), component(1), component(2)}, std::nullopt};
  if (digits.size() / each == 4) color.alpha = component(3);
  return color;
}

void checkRange(const Quantity& quantity, double most, const char* what) {
  if (!(quantity.number >= 0 && quantity.number <= most))
    TextReader::fail(quantity.at, std::string("expected ") + what);
}

double alphaOf(const Quantity& quantity) {
  constexpr const char* what = "an alpha of 0 to 1 or 0% to 100%";
  if (!quantity.unit.empty() && !quantity.isPercent()) TextReader::fail(quantity.at, std::string("expected ") + what);
  checkRange(quantity, 1, what);
  return quantity.number;
}

double byteOf(const Quantity& quantity) {
  constexpr const char* what = "0 to 255 or 0% to 100%";
  if (!quantity.unit.empty() && !quantity.isPercent()) TextReader::fail(quantity.at, std::string("expected ") + what);
  checkRange(quantity, quantity.isPercent() ? 1 : 255, what);
  return quantity.isPercent() ? quantity.number : quantity.number / 255;
}

// Saturations and lightnesses: 50% and 50 are the same.
double partOf(const Quantity& quantity) {
  constexpr const char* what = "0% to 100%";
  if (!quantity.unit.empty() && !quantity.isPercent()) TextReader::fail(quantity.at, std::string("expected ") + what);
  checkRange(quantity, quantity.isPercent() ? 1 : 100, what);
  return quantity.isPercent() ? quantity.number : quantity.number / 100;
}

// In degrees, of 0 to below 360.
double hueOf(const Quantity& quantity) {
  const std::string unit = lowered(quantity.unit);
  double degrees = quantity.number;
  if (unit == "turn") {
    degrees *= 360;
  } else if (unit == "rad") {
    degrees *= 180 / std::numbers::pi;
  } else if (unit == "grad") {
    degrees *= 0.9;
  } else if (!unit.empty() && unit != "deg") {
    TextReader::fail(quantity.at, "expected a hue in degrees, or with deg, rad, grad or turn");
  }
  degrees = std::fmod(degrees, 360);
  return std::isfinite(degrees) ? (degrees < 0 ? degrees + 360 : degrees) : 0;
}

Rgb rgbOfHsl(double hue, double saturation, double lightness) {
  const double reach = saturation * std::min(lightness, 1 - lightness);
  const auto component = [&](double offset) {
    const double k = std::fmod(offset + hue / 30, 12);
    return std::min(1.0, std::max(0.0, lightness - reach * std::max(-1.0, std::min({k - 3, 9 - k, 1.0}))));
  };
  return {component(0), component(8), component(4)};
}

// The three components and the alpha between parentheses, apart by commas or by white space.
TextColor readComponents(TextReader& reader, const std::string& function) {
  reader.expect('(');
  const bool isSrgb = function == "color";
  if (isSrgb) {
    if (lowered(reader.peekedWord()) != "srgb") reader.expected("\"srgb\"");
    reader.word();
  }
  Quantity parts[3];
  bool commas = false;
  for (int i = 0; i < 3; ++i) {
    if (i == 1) {
      commas = !isSrgb && reader.takes(',');
    } else if (i == 2 && commas) {
      reader.expect(',');
    }
    parts[i] = reader.quantity("a number");
    if (isSrgb && !parts[i].unit.empty() && !parts[i].isPercent()) {
      TextReader::fail(parts[i].at, "expected a number without a unit");
    }
  }
  TextColor color;
  if (reader.takes(commas ? ',' : '/')) color.alpha = alphaOf(reader.quantity("an alpha"));
  reader.expect(')');
  if (isSrgb) {
    color.rgb = {parts[0].number, parts[1].number, parts[2].number};
  } else if (function.starts_with("rgb")) {
    color.rgb = {byteOf(parts[0]), byteOf(parts[1]), byteOf(parts[2])};
  } else {
    color.rgb = rgbOfHsl(hueOf(parts[0]), partOf(parts[1]), partOf(parts[2]));
  }
  return color;
}

}  // namespace

TextColor readColor(TextReader& reader, const std::string& otherwise) {
  if (reader.next() == '#') return readCode(reader);
  const std::size_t at = reader.place();
  const std::string name = lowered(reader.peekedWord());
  if (name.empty()) reader.expected(kForms + otherwise);
  for (const char* function : {"rgb", "rgba", "hsl", "hsla", "color"}) {
    if (name != function) continue;
    reader.word();
    return readComponents(reader, name);
  }
  if (name == "transparent") {
    reader.word();
    return {{0, 0, 0}, 0};
  }
  const auto code = namedColor(name);
  if (!code)
    TextReader::fail(at, "expected " + (kForms + otherwise) + ", not " + quotedText(name) + closeColorsHint(name));
  reader.word();
  return {rgbOfCode(*code), std::nullopt};
}

std::optional<std::string> colorCode(const Rgb& color) {
  std::vector<std::uint8_t> bytes;
  for (const double component : color) {
    if (!(component >= 0 && component <= 1)) return std::nullopt;
    const auto byte = static_cast<std::uint8_t>(std::lround(component * 255));
    if (byte / 255.0 != component || std::signbit(component)) return std::nullopt;
    bytes.push_back(byte);
  }
  return '#' + hexadecimal(bytes);
}

std::string colorText(const Rgb& color) {
  if (const auto code = colorCode(color)) return *code;
  return "color(srgb " + numberText(color[0]) + " " + numberText(color[1]) + " " + numberText(color[2]) + ")";
}

}  // namespace host
