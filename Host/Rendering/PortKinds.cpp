// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/PortKinds.h"

#include "Host/Messages/CloseNames.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Json.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTPorts.h"

#include <cmath>

namespace host {
namespace {

std::optional<double> numberAttribute(const QCPort& port, const char* key) {
  const PropertyList* value = port.attributes().find(key);
  if (!value || !value->isNumber() || std::isnan(value->doubleValue())) return std::nullopt;
  return value->doubleValue();
}

std::string folded(const std::string& name) {
  std::string text;
  for (const char c : name) {
    if (c == ' ') continue;
    text += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return text;
}

std::string withoutInput(const std::string& key) {
  static const std::string prefix = "input";
  return key.size() > prefix.size() && key.starts_with(prefix) ? key.substr(prefix.size()) : key;
}

bool answersTo(const QCPort& port, const std::string& name) {
  return folded(port.name()) == name || folded(port.key()) == name || folded(withoutInput(port.key())) == name;
}

}  // namespace

PortKind portKindOf(const QCPort& port) {
  if (dynamic_cast<const VRTGradientPort*>(&port)) return PortKind::Gradient;
  if (dynamic_cast<const VRTHistogramPort*>(&port)) return PortKind::Levels;
  if (dynamic_cast<const VRTOpaqueDataPort*>(&port)) return PortKind::Opaque;
  if (dynamic_cast<const QCNumberPort*>(&port)) return PortKind::Number;
  if (dynamic_cast<const QCBooleanPort*>(&port)) return PortKind::Boolean;
  if (dynamic_cast<const QCIndexPort*>(&port)) return PortKind::Index;
  if (dynamic_cast<const QCColorPort*>(&port)) return PortKind::Color;
  if (dynamic_cast<const QCStringPort*>(&port)) return PortKind::String;
  if (dynamic_cast<const QCImagePort*>(&port)) return PortKind::Image;
  return PortKind::Object;
}

const char* portKindName(PortKind kind) {
  switch (kind) {
    case PortKind::Number:
      return "number";
    case PortKind::Boolean:
      return "boolean";
    case PortKind::Index:
      return "index";
    case PortKind::Color:
      return "color";
    case PortKind::String:
      return "string";
    case PortKind::Image:
      return "image";
    case PortKind::Gradient:
      return "gradient";
    case PortKind::Levels:
      return "levels";
    case PortKind::Opaque:
      return "opaque";
    case PortKind::Object:
      break;
  }
  return "object";
}

PortRange portRange(const QCPort& port) {
  return {numberAttribute(port, "minimum"), numberAttribute(port, "maximum")};
}

std::string rangeText(const PortRange& range) {
  if (range.minimum && range.maximum) return numberText(*range.minimum) + " to " + numberText(*range.maximum);
  if (range.minimum) return "at least " + numberText(*range.minimum);
  if (range.maximum) return "at most " + numberText(*range.maximum);
  return "";
}

std::vector<std::string> portMenu(const QCPort& port) {
  std::vector<std::string> entries;
  if (const PropertyList* menu = port.attributes().find("menu")) {
    for (const PropertyList& entry : menu->items()) entries.push_back(entry.stringValue());
  }
  return entries;
}

QCPort* findInputPort(const QCPatch& patch, const std::string& name) {
  for (const auto& port : patch.inputPorts()) {
    if (port->key() == name) return port.get();
  }
  for (const auto& port : patch.inputPorts()) {
    if (answersTo(*port, folded(name))) return port.get();
  }
  return nullptr;
}

QCPort& inputPortNamed(const QCPatch& patch, const std::string& effect, const std::string& name) {
  if (QCPort* port = findInputPort(patch, name)) return *port;
  std::vector<std::string> keys;
  for (const auto& port : patch.inputPorts()) keys.push_back(port->key());
  const std::string known = keys.empty() ? "it has no ports" : "its ports are " + joinedNames(keys);
  throw Failure(ExitCode::Usage, "the effect \"" + effect + "\" has no port \"" + name + "\"; " + known);
}

}  // namespace host
