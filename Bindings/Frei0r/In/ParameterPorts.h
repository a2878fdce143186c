// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bindings/Frei0r/In/ForeignEffect.h"

#include <memory>
#include <string>
#include <vector>

class QCPatch;
class QCPort;

namespace vorto::frei0r {

// The parameters of a foreign plug-in as input ports of a patch: booleans, numbers, colors and texts as such, a
// position as two numbers. Keys are the parameters' names as one word behind "input", with a number where a patch has
// that key; numbers go from 0 to 1, or as far as a default beyond.
class ParameterPorts {
 public:
  // Adds the ports. `reserved` are keys that the patch gives to others later.
  ParameterPorts(QCPatch& patch, std::shared_ptr<const ForeignEffect> effect, const std::vector<std::string>& reserved);

  // What is on the ports, by parameter: numbers within their range; one that is no number is the default.
  std::vector<ParameterValue> values() const;

 private:
  struct Ports {
    QCPort* first;
    QCPort* second;  // of a position
  };
  Ports added(QCPatch& patch, const ForeignParameter& parameter, const std::string& name);
  std::string freeKey(const QCPatch& patch, const std::string& name) const;
  QCPort* addNumber(QCPatch& patch, const std::string& name, const std::string& explanation, double initial);

  std::shared_ptr<const ForeignEffect> effect_;
  std::vector<std::string> reserved_;
  std::vector<Ports> ports_;  // by parameter; owned by the patch
};

// A text of unknown origin as one line of well-formed UTF-8 without white space at its ends.
std::string tidyLine(std::string text);

}  // namespace vorto::frei0r
