// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bindings/Frei0r/Out/NumberScale.h"

#include <array>
#include <optional>
#include <string>
#include <variant>
#include <vector>

class QCPatch;
class QCPort;

namespace frei0r {

// A value as it crosses the border: a number or boolean, a color, a position, or a text.
using Color = std::array<float, 3>;
using Position = std::array<double, 2>;
using Value = std::variant<double, Color, Position, std::string>;

// A parameter of a plug-in, for a port of the effect, for two that make a point, or for the alpha of a color.
struct Parameter {
  enum class Kind { Number, Boolean, Paint, Alpha, Point, Text };

  Kind kind = Kind::Number;
  std::string key;   // of the port
  std::string keyY;  // of a point's second one
  std::string name;
  std::string explanation;
  std::string defaultText;  // for lists, as people type it

  int type() const;  // F0R_PARAM_...
};

// The parameters of an effect's input ports, in their order, but for those with these keys; and the ports that none can
// be made of. A point is a pair of ports KEYX and KEYY with shares of 0 to 1. Since some hosts know no positions, its
// two numbers are parameters as well, under the keys of the ports and behind all others.
struct ParameterList {
  std::vector<Parameter> parameters;
  std::vector<std::string> leftOut;  // "inputData: the port takes an object"
};
ParameterList parametersOf(const QCPatch& patch, const std::vector<std::string>& withoutKeys);

// What the ports hold, as the value of a parameter; and the way back. A text is what `vorto render --set` takes, or for
// gradients, levels and opaque data a state's file or preset:NAME, for images a picture's file; an empty one changes
// nothing but string ports. Throws Failure where the value does not fit, and then nothing has changed.
Value valueOf(const QCPatch& patch, const Parameter& parameter);
void setValue(QCPatch& patch, const Parameter& parameter, const Value& value);

}  // namespace frei0r
