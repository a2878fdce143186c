// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/Out/Parameter.h"

#include "Bindings/Frei0r/Out/TextParameter.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Json.h"
#include "Host/Texts/ColorText.h"
#include "Platform/QuartzComposer/QCPatch.h"

#include "Bindings/Frei0r/Frei0rHeader.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace frei0r {
namespace {

using host::Failure;
using host::PortKind;

constexpr double kColorStep = 1e-6;  // below what a float tells apart

bool isShare(const QCPort& port) {
  const host::PortRange range = host::portRange(port);
  return host::portKindOf(port) == PortKind::Number && range.minimum == 0.0 && range.maximum == 1.0;
}

// The second port of a point that begins with this one; null where there is none.
const QCPort* secondOfPoint(const QCPatch& patch, const QCPort& port) {
  const std::string& key = port.key();
  if (!key.ends_with('X') || !isShare(port)) return nullptr;
  const QCPort* second = patch.inputPortForKey(key.substr(0, key.size() - 1) + 'Y');
  return second && isShare(*second) ? second : nullptr;
}

// "Center" of "Center X".
std::string nameOfPoint(const QCPort& port) {
  std::string name = port.name();
  if (name.ends_with('X')) name.pop_back();
  while (name.ends_with(' ')) name.pop_back();
  return name.empty() ? port.key() : name;
}

const QCColor& colorOf(const QCPatch& patch, const Parameter& parameter) {
  static const QCColor black;
  const auto* port = dynamic_cast<const QCColorPort*>(patch.inputPortForKey(parameter.key));
  const QCColor* color = port ? port->colorValue().get() : nullptr;
  return color ? *color : black;  // which the port keeps
}

double numberOf(const QCPatch& patch, const std::string& key) {
  const auto* port = dynamic_cast<const QCNumberPort*>(patch.inputPortForKey(key));
  return port ? port->doubleValue() : 0;
}

double shareOf(const QCPatch& patch, const std::string& key) {
  const QCPort* port = patch.inputPortForKey(key);
  return port ? NumberScale(host::portRange(*port)).share(numberOf(patch, key)) : 0;
}

double finite(double number, const Parameter& parameter) {
  if (std::isfinite(number)) return number;
  throw Failure(host::ExitCode::Usage, parameter.name + ": the value is no number");
}

void setShare(QCPatch& patch, const std::string& key, double share) {
  QCPort* port = patch.inputPortForKey(key);
  if (!port) return;
  const double number = NumberScale(host::portRange(*port)).value(share);
  port->setValue(NSNumber::numberWithDouble(number));
}

// What a byte comes to as a float becomes what it comes to as a double.
double component(float value) {
  const double byte = std::round(double{value} * 255);
  return std::abs(byte / 255 - value) < kColorStep ? std::clamp(byte / 255, 0.0, 1.0)
                                                   : std::clamp(double{value}, 0.0, 1.0);
}

void setColor(QCPatch& patch, const Parameter& parameter, const Color& color) {
  QCPort* port = patch.inputPortForKey(parameter.key);
  for (const float each : color) finite(each, parameter);
  const double alpha = colorOf(patch, parameter).alpha;
  if (port)
    port->setValue(std::make_shared<QCColor>(component(color[0]), component(color[1]), component(color[2]), alpha));
}

void setAlpha(QCPatch& patch, const Parameter& parameter, double alpha) {
  QCPort* port = patch.inputPortForKey(parameter.key);
  const QCColor& old = colorOf(patch, parameter);
  if (port) port->setValue(std::make_shared<QCColor>(old.red, old.green, old.blue, std::clamp(alpha, 0.0, 1.0)));
}

// Makes the list of one patch.
class Lister {
 public:
  Lister(const QCPatch& patch, const std::vector<std::string>& without) : patch_(patch) {
    done_.insert(without.begin(), without.end());
  }

  ParameterList list() {
    for (const auto& port : patch_.inputPorts()) {
      if (done_.insert(port->key()).second) add(*port);
    }
    for (Parameter& each : behind_) append(std::move(each));
    return std::move(list_);
  }

 private:
  void add(const QCPort& port) {
    switch (host::portKindOf(port)) {
      case PortKind::Number:
        return addNumber(port);
      case PortKind::Boolean:
        return append({Parameter::Kind::Boolean, port.key(), "", port.name(), "", ""});
      case PortKind::Color:
        append({Parameter::Kind::Paint, port.key(), "", port.name(), "Its opacity is a parameter of its own", ""});
        return append({Parameter::Kind::Alpha, port.key(), "", port.name() + " Alpha", "0 to 1", ""});
      case PortKind::Object:
        list_.leftOut.push_back(port.key() + ": objects have no text");
        return;
      default:
        return append({Parameter::Kind::Text, port.key(), "", port.name(), explanationOfText(port), ""});
    }
  }

  void addNumber(const QCPort& port) {
    const QCPort* second = secondOfPoint(patch_, port);
    if (!second || done_.contains(second->key())) return append(number(port, port.name()));
    done_.insert(second->key());
    append(
        {Parameter::Kind::Point, port.key(), second->key(), nameOfPoint(port), "Shares of the width and height", ""});
    behind_.push_back(number(port, port.key()));
    behind_.push_back(number(*second, second->key()));
  }

  static Parameter number(const QCPort& port, const std::string& name) {
    return {Parameter::Kind::Number, port.key(), "", name, NumberScale(host::portRange(port)).explanation(), ""};
  }

  // Hosts tell parameters apart by their names in lower case, and have properties of these names themselves.
  void append(Parameter parameter) {
    std::string folded = host::lowered(parameter.name);
    if (folded.empty() || folded == "name" || folded == "parent" || folded == "qos" || names_.contains(folded)) {
      parameter.name = parameter.key + (parameter.kind == Parameter::Kind::Alpha ? " Alpha" : "");
      folded = host::lowered(parameter.name);
    }
    names_.insert(folded);
    parameter.defaultText = textOf(valueOf(patch_, parameter), parameter.kind);
    list_.parameters.push_back(std::move(parameter));
  }

  static std::string textOf(const Value& value, Parameter::Kind kind) {
    if (const auto* number = std::get_if<double>(&value)) {
      if (kind == Parameter::Kind::Boolean) return *number >= 0.5 ? "true" : "false";
      return host::numberText(*number);
    }
    if (const auto* point = std::get_if<Position>(&value)) {
      return host::numberText((*point)[0]) + "/" + host::numberText((*point)[1]);
    }
    if (const auto* color = std::get_if<Color>(&value)) {
      const host::Rgb rgb{component((*color)[0]), component((*color)[1]), component((*color)[2])};
      if (const auto code = host::colorCode(rgb)) return *code;
      return host::numberText(rgb[0]) + "/" + host::numberText(rgb[1]) + "/" + host::numberText(rgb[2]);
    }
    return '"' + std::get<std::string>(value) + '"';
  }

  const QCPatch& patch_;
  ParameterList list_;
  std::vector<Parameter> behind_;
  std::set<std::string> done_, names_;
};

}  // namespace

int Parameter::type() const {
  switch (kind) {
    case Kind::Boolean:
      return F0R_PARAM_BOOL;
    case Kind::Paint:
      return F0R_PARAM_COLOR;
    case Kind::Point:
      return F0R_PARAM_POSITION;
    case Kind::Text:
      return F0R_PARAM_STRING;
    default:
      return F0R_PARAM_DOUBLE;
  }
}

ParameterList parametersOf(const QCPatch& patch, const std::vector<std::string>& withoutKeys) {
  return Lister(patch, withoutKeys).list();
}

Value valueOf(const QCPatch& patch, const Parameter& parameter) {
  const QCPort* port = patch.inputPortForKey(parameter.key);
  switch (parameter.kind) {
    case Parameter::Kind::Boolean: {
      const auto* boolean = dynamic_cast<const QCBooleanPort*>(port);
      return boolean && boolean->booleanValue() ? 1.0 : 0.0;
    }
    case Parameter::Kind::Paint: {
      const QCColor& color = colorOf(patch, parameter);
      return Color{static_cast<float>(color.red), static_cast<float>(color.green), static_cast<float>(color.blue)};
    }
    case Parameter::Kind::Alpha:
      return colorOf(patch, parameter).alpha;
    case Parameter::Kind::Point:
      return Position{shareOf(patch, parameter.key), shareOf(patch, parameter.keyY)};
    case Parameter::Kind::Text:
      return port ? textOfPort(*port) : std::string();
    default:
      return shareOf(patch, parameter.key);
  }
}

void setValue(QCPatch& patch, const Parameter& parameter, const Value& value) {
  switch (parameter.kind) {
    case Parameter::Kind::Boolean:
      if (QCPort* port = patch.inputPortForKey(parameter.key)) {
        port->setValue(NSNumber::numberWithBool(finite(std::get<double>(value), parameter) >= 0.5));
      }
      return;
    case Parameter::Kind::Paint:
      return setColor(patch, parameter, std::get<Color>(value));
    case Parameter::Kind::Alpha:
      return setAlpha(patch, parameter, finite(std::get<double>(value), parameter));
    case Parameter::Kind::Point: {
      const auto& [x, y] = std::get<Position>(value);
      finite(x + y, parameter);
      setShare(patch, parameter.key, x);
      return setShare(patch, parameter.keyY, y);
    }
    case Parameter::Kind::Text:
      if (QCPort* port = patch.inputPortForKey(parameter.key))
        setPortFromParameter(*port, std::get<std::string>(value));
      return;
    default:
      return setShare(patch, parameter.key, finite(std::get<double>(value), parameter));
  }
}

}  // namespace frei0r
