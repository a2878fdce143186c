// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/PortValues.h"

#include "Host/Messages/CloseNames.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"
#include "Host/Messages/Utf8.h"
#include "Host/Rendering/PortKinds.h"
#include "Host/States/StateFile.h"
#include "Host/Texts/LevelsText.h"
#include "Platform/QuartzComposer/QCPort.h"

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

// Two hexadecimal digits as 0 to 1.
std::optional<double> parsedByte(std::string_view digits) {
  unsigned value = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
  if (result.ec != std::errc() || result.ptr != digits.data() + digits.size()) return std::nullopt;
  return value / 255.0;
}

std::vector<std::optional<double>> colorComponents(const std::string& text) {
  std::vector<std::optional<double>> components;
  if (text.starts_with('#')) {
    if (text.size() != 7 && text.size() != 9) return components;
    for (std::size_t i = 1; i < text.size(); i += 2)
      components.push_back(parsedByte(std::string_view(text).substr(i, 2)));
    return components;
  }
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(',', begin), text.size());
    components.push_back(parsedNumber(std::string_view(text).substr(begin, end - begin)));
    begin = end + 1;
  }
  return components;
}

std::shared_ptr<QCColor> parsedColor(const QCPort& port, const std::string& text) {
  const auto components = colorComponents(text);
  bool good = components.size() == 3 || components.size() == 4;
  for (const auto& component : components) good = good && component && *component >= 0 && *component <= 1;
  if (!good) refuse(port, text, "the port takes a color: #rrggbb, #rrggbbaa, or r,g,b[,a] with values from 0 to 1");
  const double alpha = components.size() == 4 ? *components[3] : 1;
  return std::make_shared<QCColor>(*components[0], *components[1], *components[2], alpha);
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
  try {
    setLevelsValue(state, part, text);
  } catch (const TextFault& fault) {
    throw Failure(ExitCode::Usage, whole + fault.what());
  }
  std::string reason;
  if (!port.setStateValue(state, &reason)) throw Failure(ExitCode::Usage, whole + reason);
}

}  // namespace host
