// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/EffectsCommand.h"

#include "Host/Messages/CloseNames.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Json.h"
#include "Host/Messages/StandardOutput.h"
#include "Host/Messages/Table.h"
#include "Host/Messages/Utf8.h"
#include "Host/Rendering/Effects.h"
#include "Host/Rendering/Parameters.h"
#include "Host/Rendering/PortKinds.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Registry/VRTExecutionTraits.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

namespace host {
namespace {

// Defaults that people can type again: numbers, booleans, indexes, strings and colors.
std::optional<PropertyList> defaultOf(const QCPort& port) {
  switch (portKindOf(port)) {
    case PortKind::Image:
    case PortKind::Gradient:
    case PortKind::Levels:
    case PortKind::Opaque:
    case PortKind::Object:
      return std::nullopt;
    default:
      return port.stateValue();
  }
}

// "#rrggbb" or "#rrggbbaa" for what bytes can say, otherwise the numbers.
std::string colorText(const PropertyList& color) {
  std::vector<std::uint8_t> bytes;
  std::string numbers;
  for (const PropertyList& component : color.items()) {
    const double value = component.doubleValue();
    const double byte = std::round(std::clamp(value, 0.0, 1.0) * 255);
    if (byte / 255 == value) bytes.push_back(static_cast<std::uint8_t>(byte));
    numbers += (numbers.empty() ? "" : ",") + numberText(value);
  }
  if (bytes.size() != 4) return numbers;
  if (bytes[3] == 255) bytes.pop_back();
  return '#' + hexadecimal(bytes);
}

std::string defaultText(const QCPort& port) {
  const auto value = defaultOf(port);
  if (!value) return "";
  switch (portKindOf(port)) {
    case PortKind::Boolean:
      return value->boolValue() ? "true" : "false";
    case PortKind::Color:
      return colorText(*value);
    case PortKind::String:
      return '"' + value->stringValue() + '"';
    case PortKind::Index: {
      const auto menu = portMenu(port);
      const auto index = static_cast<std::size_t>(value->integerValue());
      return index < menu.size() ? menu[index] : numberText(value->doubleValue());
    }
    default:
      return numberText(value->doubleValue());
  }
}

std::string roleText(const QCPort& port, const EffectRoles& roles) {
  const auto input = std::find(roles.inputs.begin(), roles.inputs.end(), &port);
  if (input != roles.inputs.end()) {
    return roles.inputs.size() == 1 ? "from --input"
                                    : "from --input " + std::to_string(input - roles.inputs.begin() + 1);
  }
  if (takesPicture(port, roles)) return "optional, from --set " + port.key() + "=FILE";
  return &port == roles.time ? "from --time" : "";
}

template <class Described>
std::string textAttribute(const Described& described, const char* key) {
  const PropertyList* value = described.attributes().find(key);
  return value ? value->stringValue() : "";
}

std::string remarks(const QCPort& port, const EffectRoles& roles) {
  std::vector<std::string> parts;
  const auto menu = portMenu(port);
  if (!menu.empty()) {
    parts.push_back(joinedNames(menu, ", "));
  } else if (const std::string range = rangeText(portRange(port)); !range.empty()) {
    parts.push_back(range);
  }
  if (const std::string text = defaultText(port); !text.empty()) parts.push_back("default " + text);
  if (const std::string text = roleText(port, roles); !text.empty()) parts.push_back(text);
  if (const std::string text = textAttribute(port, "description"); !text.empty()) parts.push_back(text);
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : "; ") + part;
  return text;
}

// What the results depend on beside the ports; that transitions change with the time goes without saying.
std::string dependence(const QCPatch& patch, EffectKind kind) {
  const bool isTold = dependsOnTime(patch) && kind != EffectKind::Transition;
  if (keepsState(patch))
    return isTold ? "Depends on the time and on the frames before." : "Depends on the frames before.";
  return isTold ? "Depends on the time." : "";
}

void printEffect(const std::string& name, const QCPatch& patch, EffectKind kind) {
  printText("\n  " + printable(name) + "\n");
  const std::string description = textAttribute(patch, "description");
  for (const std::string& text : {description, dependence(patch, kind)}) {
    if (!text.empty()) printText("    " + printable(text) + "\n");
  }
  const EffectRoles roles = effectRoles(patch, kind);
  Table table({Table::Left, Table::Left, Table::Left, Table::Left});
  for (const auto& port : patch.inputPorts()) {
    table.addRow({port->key(), port->name(), portKindName(portKindOf(*port)), remarks(*port, roles)});
  }
  printText(table.text("      "));
}

void writePort(JsonWriter& json, const QCPort& port) {
  json.beginObject();
  json.key("key");
  json.value(std::string_view(port.key()));
  json.key("name");
  json.value(std::string_view(port.name()));
  json.key("kind");
  json.value(portKindName(portKindOf(port)));
  if (const std::string text = textAttribute(port, "description"); !text.empty()) {
    json.key("description");
    json.value(std::string_view(text));
  }
  const PortRange range = portRange(port);
  if (range.minimum) {
    json.key("minimum");
    json.value(*range.minimum);
  }
  if (range.maximum) {
    json.key("maximum");
    json.value(*range.maximum);
  }
  if (const auto value = defaultOf(port)) {
    json.key("default");
    json.value(*value);
  }
  if (const auto menu = portMenu(port); !menu.empty()) {
    json.key("menu");
    json.beginArray();
    for (const std::string& entry : menu) json.value(std::string_view(entry));
    json.endArray();
  }
  json.endObject();
}

void writePorts(JsonWriter& json, const char* key, const QCPatch::Ports& ports) {
  json.key(key);
  json.beginArray();
  for (const auto& port : ports) writePort(json, *port);
  json.endArray();
}

// The ports' keys by role, as the effect declares them.
void writeRoles(JsonWriter& json, const QCPatch& patch, EffectKind kind) {
  const PropertyList* protocols = patch.attributes().find("protocols");
  const PropertyList* roles = protocols ? protocols->find(effectKindKey(kind)) : nullptr;
  json.key("roles");
  json.value(roles ? *roles : PropertyList());
}

void writeEffect(JsonWriter& json, const std::string& name, const QCPatch& patch, EffectKind kind) {
  json.beginObject();
  json.key("name");
  json.value(std::string_view(name));
  json.key("description");
  json.value(std::string_view(textAttribute(patch, "description")));
  json.key("dependsOnTime");
  json.value(dependsOnTime(patch));
  json.key("keepsState");
  json.value(keepsState(patch));
  writeRoles(json, patch, kind);
  writePorts(json, "inputs", patch.inputPorts());
  writePorts(json, "outputs", patch.outputPorts());
  json.endObject();
}

// What can be made of a kind; for the rest there is a line on standard error.
template <class Use>
void forEachEffect(EffectKind kind, Use use) {
  for (const std::string& name : effectNames(kind)) {
    std::shared_ptr<const QCPatch> effect = describedEffect(name);
    try {
      if (!effect) effect = makeEffect(name);  // which says what is wrong
    } catch (const Failure& failure) {
      std::fprintf(stderr, "vorto: %s\n", printable(failure.what()).c_str());
      continue;
    }
    use(name, *effect);
  }
}

void printList() {
  bool first = true;
  for (const EffectKind kind : kEffectKinds) {
    bool isFirstOfKind = true;
    forEachEffect(kind, [&](const std::string& name, const QCPatch& patch) {
      if (isFirstOfKind) printText(std::string(first ? "" : "\n") + effectKindPlural(kind) + "\n");
      first = isFirstOfKind = false;
      printEffect(name, patch, kind);
    });
  }
  if (first) printText("No effects were found.\n");
}

void printJson() {
  JsonWriter json;
  json.beginObject();
  for (const EffectKind kind : kEffectKinds) {
    json.key(effectKindKey(kind));
    json.beginArray();
    forEachEffect(kind, [&](const std::string& name, const QCPatch& patch) { writeEffect(json, name, patch, kind); });
    json.endArray();
  }
  json.endObject();
  printText(json.take());
}

}  // namespace

void runEffects(const EffectsOptions& options) {
  loadEffects(options.python);
  if (options.json) {
    printJson();
  } else {
    printList();
  }
}

}  // namespace host
