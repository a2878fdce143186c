// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/PortValues.h"

#include "Host/Messages/CloseNames.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"
#include "Host/Messages/Utf8.h"
#include "Host/Rendering/PortKinds.h"
#include "Host/States/StateFile.h"
#include "Host/Texts/ColorText.h"
#include "Host/Texts/LevelsText.h"
#include "Platform/QuartzComposer/QCPort.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <vector>

namespace host {
namespace {

[[noreturn]] void refuse(const QCPort& port, const std::string& text, const std::string& reason) {
  throw Failure(ExitCode::Usage, port.key() + "=" + printable(text) + ": " + reason);
}

// The whole text as a number, in any locale.
std::optional<double> parsedNumber(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  double number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size()) return std::nullopt;
  return number;
}

void checkRange(const QCPort& port, const std::string& text, double number) {
  const PortRange range = portRange(port);
  const bool inside = (!range.minimum || number >= *range.minimum) && (!range.maximum || number <= *range.maximum);
  if (!inside) refuse(port, text, "the value is out of range (" + rangeText(range) + ")");
}

double finiteNumber(const QCPort& port, const std::string& text) {
  const auto number = parsedNumber(text);
  if (!number || !std::isfinite(*number)) {
    const std::string range = rangeText(portRange(port));
    refuse(port, text, "the port takes a number" + (range.empty() ? "" : " (" + range + ")"));
  }
  return *number;
}

bool parsedBoolean(const QCPort& port, const std::string& text) {
  for (const char* yes : {"true", "on", "yes", "1"}) {
    if (text == yes) return true;
  }
  for (const char* no : {"false", "off", "no", "0"}) {
    if (text == no) return false;
  }
  refuse(port, text, "the port takes true or false");
}

std::uint32_t parsedIndex(const QCPort& port, const std::string& text) {
  const std::vector<std::string> menu = portMenu(port);
  for (std::size_t i = 0; i < menu.size(); ++i) {
    if (menu[i] == text) return static_cast<std::uint32_t>(i);
  }
  const auto number = parsedNumber(text);
  const bool whole = number && *number >= 0 && *number <= 4294967295.0 && *number == std::floor(*number);
  if (!menu.empty() && (!whole || *number >= static_cast<double>(menu.size()))) {
    refuse(port, text,
           "the port takes " + joinedNames(menu, " or ") + ", or their number from 0 to " +
               std::to_string(menu.size() - 1));
  }
  if (!whole) {
    const std::string range = rangeText(portRange(port));
    refuse(port, text, "the port takes a whole number" + (range.empty() ? "" : " (" + range + ")"));
  }
  checkRange(port, text, *number);
  return static_cast<std::uint32_t>(*number);
}

// "r,g,b" or "r,g,b,a" of 0 to 1.
std::optional<TextColor> plainColor(const std::string& text) {
  std::vector<std::optional<double>> numbers;
  for (std::size_t begin = 0; begin <= text.size() && numbers.size() < 5;) {
    const std::size_t end = std::min(text.find(',', begin), text.size());
    numbers.push_back(parsedNumber(std::string_view(text).substr(begin, end - begin)));
    begin = end + 1;
  }
  const bool isWhole = (numbers.size() == 3 || numbers.size() == 4) &&
                       std::ranges::all_of(numbers, [](const auto& number) { return number.has_value(); });
  if (!isWhole) return std::nullopt;
  return TextColor{{*numbers[0], *numbers[1], *numbers[2]}, numbers.size() == 4 ? numbers[3] : std::nullopt};
}

TextColor cssColor(const QCPort& port, const std::string& text) {
  try {
    TextReader reader(text);
    const TextColor color = readColor(reader, ", or r,g,b[,a] with values from 0 to 1");
    if (!reader.atEnd()) reader.expected("the end of the color");
    return color;
  } catch (const TextFault& fault) {
    refuse(port, text, faultWithPlace(text, fault, true));
  }
}

std::shared_ptr<QCColor> parsedColor(const QCPort& port, const std::string& text) {
  const auto plain = plainColor(text);
  const TextColor color = plain ? *plain : cssColor(port, text);
  const double alpha = color.alpha.value_or(1);
  for (const double component : {color.rgb[0], color.rgb[1], color.rgb[2], alpha}) {
    if (!(component >= 0 && component <= 1)) refuse(port, text, "the port takes colors with values from 0 to 1");
  }
  return std::make_shared<QCColor>(color.rgb[0], color.rgb[1], color.rgb[2], alpha);
}

NSObjectRef parsedParameter(const QCPort& port, const std::string& text, StateKind kind) {
  if (validUtf8(text) != text) refuse(port, text, "the text is not UTF-8");
  try {
    const StateFile state = stateOfInlineText(text, kind);
    if (state.kind != kind) refuse(port, text, std::string("the port takes ") + stateKindName(kind));
    for (const std::string& note : state.notes) remark(port.key() + ": " + note);
    return state.object;
  } catch (const TextFault& fault) {
    const bool mayBeFile = fault.offset == 0 && !std::string_view(fault.what()).ends_with('?');
    throw Failure(ExitCode::Usage, port.key() + "=" + quotedText(text) + ": " + faultWithPlace(text, fault, true) +
                                       (mayBeFile ? "; a saved state is given with --state" : ""));
  }
}

NSObjectRef parsedValue(const QCPort& port, const std::string& text) {
  switch (portKindOf(port)) {
    case PortKind::Number: {
      const double number = finiteNumber(port, text);
      checkRange(port, text, number);
      return NSNumber::numberWithDouble(number);
    }
    case PortKind::Boolean:
      return NSNumber::numberWithBool(parsedBoolean(port, text));
    case PortKind::Index:
      return NSNumber::numberWithInt(parsedIndex(port, text));
    case PortKind::Color:
      return parsedColor(port, text);
    case PortKind::String:
      if (validUtf8(text) != text) refuse(port, text, "the text is not UTF-8");
      return NSString::stringWithUTF8String(text);
    case PortKind::Image:
      refuse(port, text, "the port takes an image; give its file with --input");
    case PortKind::Gradient:
      return parsedParameter(port, text, StateKind::Gradient);
    case PortKind::Levels:
      return parsedParameter(port, text, StateKind::Levels);
    case PortKind::Opaque:
      refuse(port, text, "the port takes an opaque state; give its file with --state");
    case PortKind::Object:
      break;
  }
  refuse(port, text, "the port takes an object that has no text");
}

}  // namespace

void setPortFromText(QCPort& port, const std::string& text) {
  if (!port.setValue(parsedValue(port, text))) refuse(port, text, "the port does not take this value");
}

void setPartOfPort(QCPort& port, const std::string& part, const std::string& text) {
  const std::string whole = port.key() + "." + printable(part) + "=" + printable(text) + ": ";
  if (portKindOf(port) != PortKind::Levels) {
    throw Failure(ExitCode::Usage, whole + "only a port of levels is set in parts, and this one takes a " +
                                       portKindName(portKindOf(port)));
  }
  PropertyList state = port.stateValue().value_or(defaultLevels());
  std::string key;
  try {
    key = levelsKeyOfName(part);
    setLevelsValue(state, key, text);
  } catch (const TextFault& fault) {
    throw Failure(ExitCode::Usage, whole + (key.empty() ? fault.what() : faultWithPlace(text, fault, true)));
  }
  std::string reason;
  if (!port.setStateValue(state, &reason)) throw Failure(ExitCode::Usage, whole + reason);
}

}  // namespace host
