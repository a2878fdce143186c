// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/In/ParameterPorts.h"

#include "Effects/Support/EffectPatch.h"
#include "Platform/Foundation/NSUnicode.h"
#include "Platform/QuartzComposer/QCPatch.h"

#include <algorithm>
#include <cmath>

namespace vorto::frei0r {
namespace {

using effects::numberAttributes;
using effects::portAttributes;

// "Grid X" becomes "inputGridX"; what is no letter or digit of ASCII parts words.
std::string keyOf(const std::string& name) {
  std::string key = "input";
  bool beginsWord = true;
  for (const char c : name) {
    const bool isLower = c >= 'a' && c <= 'z';
    const bool isPart = isLower || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    if (isPart) key += beginsWord && isLower ? static_cast<char>(c - 'a' + 'A') : c;
    beginsWord = !isPart;
  }
  return key == "input" ? "inputParameter" : key;
}

void explain(PropertyList& attributes, const std::string& explanation) {
  if (!explanation.empty()) attributes.set("description", PropertyList::string(explanation));
}

double numberOf(const QCPort& port) {
  const double value = static_cast<const QCNumberPort&>(port).doubleValue();
  const double initial = port.attributes().find("default")->doubleValue();
  if (std::isnan(value)) return initial;
  return std::clamp(value, port.attributes().find("minimum")->doubleValue(),
                    port.attributes().find("maximum")->doubleValue());
}

double component(double value) {
  return std::isnan(value) ? 0 : std::clamp(value, 0.0, 1.0);
}

}  // namespace

std::string tidyLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return NSPrintableText(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

ParameterPorts::ParameterPorts(QCPatch& patch, std::shared_ptr<const ForeignEffect> effect,
                               const std::vector<std::string>& reserved)
    : effect_(std::move(effect)), reserved_(reserved) {
  for (const ForeignParameter& parameter : effect_->parameters) {
    std::string name = tidyLine(parameter.name);
    if (name.empty()) name = "Parameter " + std::to_string(ports_.size() + 1);
    ports_.push_back(added(patch, parameter, name));
  }
}

ParameterPorts::Ports ParameterPorts::added(QCPatch& patch, const ForeignParameter& parameter,
                                            const std::string& name) {
  const std::string explanation = tidyLine(parameter.explanation);
  const auto& numbers = parameter.initial.numbers;
  if (parameter.kind == ParameterKind::Number) return {addNumber(patch, name, explanation, numbers[0]), nullptr};
  if (parameter.kind == ParameterKind::Position) {
    QCPort* const x = addNumber(patch, name + " X", explanation, numbers[0]);
    return {x, addNumber(patch, name + " Y", explanation, numbers[1])};
  }
  PropertyList attributes = portAttributes(name);
  explain(attributes, explanation);
  const std::string key = freeKey(patch, name);
  if (parameter.kind == ParameterKind::Boolean) {
    attributes.set("default", PropertyList::boolean(numbers[0] >= 0.5));
    return {patch.addInputPort<QCBooleanPort>(key, attributes).get(), nullptr};
  }
  if (parameter.kind == ParameterKind::Color) {
    PropertyList color = PropertyList::array();
    for (const double number : numbers) color.append(PropertyList::real(component(number)));
    color.append(PropertyList::real(1));
    attributes.set("default", std::move(color));
    return {patch.addInputPort<QCColorPort>(key, attributes).get(), nullptr};
  }
  const std::string& text = parameter.initial.text;
  attributes.set("default", PropertyList::string(NSValidUTF8Length(text) == text.size() ? text : tidyLine(text)));
  return {patch.addInputPort<QCStringPort>(key, attributes).get(), nullptr};
}

QCPort* ParameterPorts::addNumber(QCPatch& patch, const std::string& name, const std::string& explanation,
                                  double initial) {
  PropertyList attributes = numberAttributes(name, std::min(0.0, initial), std::max(1.0, initial), initial);
  explain(attributes, explanation);
  return patch.addInputPort<QCNumberPort>(freeKey(patch, name), std::move(attributes)).get();
}

std::string ParameterPorts::freeKey(const QCPatch& patch, const std::string& name) const {
  const auto isTaken = [&](const std::string& key) {
    return patch.portForKey(key) || std::find(reserved_.begin(), reserved_.end(), key) != reserved_.end();
  };
  const std::string wish = keyOf(name);
  std::string key = wish;
  for (int number = 2; isTaken(key); ++number) key = wish + std::to_string(number);
  return key;
}

std::vector<ParameterValue> ParameterPorts::values() const {
  std::vector<ParameterValue> values;
  for (std::size_t i = 0; i < ports_.size(); ++i) {
    const auto [first, second] = ports_[i];
    ParameterValue& value = values.emplace_back();
    switch (effect_->parameters[i].kind) {
      case ParameterKind::Boolean:
        value.numbers[0] = static_cast<const QCBooleanPort*>(first)->booleanValue();
        break;
      case ParameterKind::Number:
        value.numbers[0] = numberOf(*first);
        break;
      case ParameterKind::Position:
        value.numbers = {numberOf(*first), numberOf(*second), 0};
        break;
      case ParameterKind::Color: {
        const auto color = static_cast<const QCColorPort*>(first)->colorValue();
        value.numbers = {component(color->red), component(color->green), component(color->blue)};
        break;
      }
      case ParameterKind::Text:
        value.text = static_cast<const QCStringPort*>(first)->stringValue();
        break;
    }
  }
  return values;
}

}  // namespace vorto::frei0r
