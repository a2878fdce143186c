// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

class QCPort;

namespace host {

// Gives a port the value that a text stands for:
//   number   -1.5, 2e-3                     within the port's range
//   boolean  true false on off yes no 1 0
//   index    a whole number, or an entry of the port's menu
//   color    r,g,b and r,g,b,a with 0 to 1, or as CSS has them (Host/Texts/ColorText.h), of 0 to 1
//   string   the text as it is
//   gradient, levels  their texts (Host/Texts/GradientText.h, LevelsText.h), and linear-gradient() of CSS
// Throws Failure when the text does not fit, with what would have.
void setPortFromText(QCPort& port, const std::string& text);

// Sets one value of a port of levels by its name, as "red.blackIn", and leaves its others as they are. Throws Failure
// for other ports, unknown names and texts that do not fit.
void setPartOfPort(QCPort& port, const std::string& part, const std::string& text);

}  // namespace host
