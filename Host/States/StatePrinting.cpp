// SPDX-License-Identifier: BSD-3-Clause
#include "Host/States/StatePrinting.h"

#include "Host/Messages/Json.h"
#include "Host/Messages/Table.h"
#include "Host/Messages/Utf8.h"
#include "Platform/Foundation/NSValues.h"
#include "Ports/VRTStateKeys.h"

#include <cmath>

namespace host {
namespace {

const char* formName(const StateFile& file) {
  if (file.form == StateForm::Archive) return "archive";
  if (file.form == StateForm::Text) return "text";
  return file.kind == StateKind::Opaque ? "data" : "dictionary";
}

std::string formatName(const StateFile& file) {
  if (file.form == StateForm::Text) return file.textFormat;
  return file.format == PropertyListFormat::Xml ? "XML" : "binary";
}

std::string number(const PropertyList* value) {
  return numberText(value ? value->doubleValue() : 0);
}

std::string interpolationName(const PropertyList& code) {
  static constexpr const char* names[] = {"constant", "linear", "smooth"};
  const std::int64_t value = code.integerValue();
  return value >= 0 && value <= 2 ? names[value] : std::to_string(value);
}

// "#rrggbb", or nothing for colors outside 0 to 1.
std::string colorCode(const PropertyList::Array& numbers, std::size_t first) {
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = first; i < first + 3; ++i) {
    const double value = numbers[i].doubleValue();
    if (!(value >= 0 && value <= 1)) return "";
    bytes.push_back(static_cast<std::uint8_t>(std::lround(value * 255)));
  }
  return '#' + hexadecimal(bytes);
}

// One row a sample; colors also as a code.
std::string samplesAsText(const PropertyList& state, const VRTStateKeys::Samples& form) {
  using namespace VRTStateKeys;
  const bool colors = &form == &kRGBSamples;
  std::vector<std::string> heading(form.entries.begin(), form.entries.end());
  if (colors) heading.emplace_back("code");
  Table table(std::vector<Table::Alignment>(heading.size(), Table::Right));
  table.addRow(std::move(heading));
  const PropertyList* samples = state.find(form.key);
  const PropertyList::Array none;
  const auto& numbers = samples ? samples->items() : none;
  for (std::size_t first = 0; first + form.entries.size() <= numbers.size(); first += form.entries.size()) {
    std::vector<std::string> row;
    for (std::size_t entry = 0; entry < form.entries.size(); ++entry) {
      const PropertyList& value = numbers[first + entry];
      row.push_back(entry == kInterpolation ? interpolationName(value) : number(&value));
    }
    if (colors) row.push_back(colorCode(numbers, first + kRed));
    table.addRow(std::move(row));
  }
  return table.text("  ");
}

std::string gradientAsText(const PropertyList& state) {
  return "colors\n" + samplesAsText(state, VRTStateKeys::kRGBSamples) + "opacities\n" +
         samplesAsText(state, VRTStateKeys::kAlphaSamples);
}

std::string levelsAsText(const PropertyList& state) {
  using namespace VRTStateKeys;
  Table table({Table::Left, Table::Right, Table::Right, Table::Right, Table::Right, Table::Right});
  table.addRow({"channel", "black in", "white in", "gamma", "black out", "white out"});
  for (std::size_t channel = 0; channel < kLevelsChannels.size(); ++channel) {
    std::vector<std::string> row{kLevelsChannels[channel]};
    for (const LevelsValue value : {kBlackIn, kWhiteIn, kGamma, kBlackOut, kWhiteOut}) {
      row.push_back(number(state.find(levelsKey(value, channel))));
    }
    table.addRow(std::move(row));
  }
  const PropertyList* selected = state.find(kSelectedChannel);
  const std::int64_t index = selected ? selected->integerValue() : 0;
  const bool known = index >= 0 && index < static_cast<std::int64_t>(kLevelsChannels.size());
  const std::string name = known ? kLevelsChannels[static_cast<std::size_t>(index)] : std::to_string(index);
  return table.text("  ") + "selected channel  " + name + "\n";
}

std::string scalarAsText(const PropertyList& value) {
  switch (value.type()) {
    case PropertyList::Type::String:
      return '"' + printable(value.stringValue()) + '"';
    case PropertyList::Type::Data:
      return std::to_string(value.bytes().size()) + " bytes " + hexadecimal(value.bytes());
    case PropertyList::Type::Real:
      return numberText(value.doubleValue());
    case PropertyList::Type::Boolean:
      return value.boolValue() ? "true" : "false";
    case PropertyList::Type::Date:
      return numberText(value.dateValue()) + " s after 2001-01-01";
    default:
      return std::to_string(value.integerValue());
  }
}

std::string treeAsText(const PropertyList& value, const std::string& label, const std::string& indent) {
  std::string text = indent + label;
  if (value.isDictionary()) {
    text += value.entries().empty() ? "{}\n" : "\n";
    for (std::size_t i = 0; i < value.entries().size(); ++i) {
      text += treeAsText(value.entries().valueAt(i), printable(value.entries().keyAt(i)) + "  ", indent + "  ");
    }
    return text;
  }
  if (value.isArray()) {
    text += value.items().empty() ? "[]\n" : "\n";
    for (const PropertyList& item : value.items()) text += treeAsText(item, "- ", indent + "  ");
    return text;
  }
  return text + scalarAsText(value) + "\n";
}

const NSObject* opaqueValue(const StateFile& file) {
  const auto* data = dynamic_cast<const VRTOpaqueData*>(file.object.get());
  return data ? data->value().get() : nullptr;
}

std::string opaqueAsText(const NSObject* value) {
  if (!value) return "  nothing\n";
  const auto list = NSPropertyListFromObject(value);
  const std::string className = "  of class " + printable(value->className()) + "\n";
  return list ? className + treeAsText(*list, "", "  ") : className;
}

// The archive itself is what is read back; the value is for people and for programs that know it.
void writeOpaque(JsonWriter& json, const NSObject* value, const PropertyList& data) {
  json.beginObject();
  json.key("class");
  json.value(std::string_view(value ? value->className() : ""));
  if (const auto list = NSPropertyListFromObject(value); value && list) {
    json.key("value");
    json.value(*list);
  }
  json.key("data");
  json.value(data);
  json.endObject();
}

}  // namespace

std::string stateAsText(const StateFile& file) {
  const std::string heading = std::string(stateKindName(file.kind)) + ", class " + printable(file.object->className()) +
                              ", " + formatName(file) +
                              (file.textFormat == "text" ? "" : std::string(" ") + formName(file)) + "\n";
  switch (file.kind) {
    case StateKind::Gradient:
      return heading + gradientAsText(file.state);
    case StateKind::Levels:
      return heading + levelsAsText(file.state);
    case StateKind::Opaque:
      break;
  }
  return heading + opaqueAsText(opaqueValue(file));
}

std::string stateAsJson(const StateFile& file) {
  JsonWriter json;
  json.beginObject();
  json.key("kind");
  json.value(stateKindName(file.kind));
  json.key("class");
  json.value(std::string_view(file.object->className()));
  json.key("form");
  json.value(formName(file));
  json.key("format");
  json.value(std::string_view(lowered(formatName(file))));
  json.key("state");
  if (file.kind == StateKind::Opaque) {
    writeOpaque(json, opaqueValue(file), file.state);
  } else {
    json.value(file.state);
  }
  json.endObject();
  return json.take();
}

}  // namespace host
