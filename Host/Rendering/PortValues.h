// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

class QCPort;

namespace host {

// Gives a port the value that a text stands for:
//   number   -1.5, 2e-3                     within the port's range
//   boolean  true false on off yes no 1 0
//   index    a whole number, or an entry of the port's menu
//   color    #rrggbb, #rrggbbaa, or r,g,b and r,g,b,a with 0 to 1
//   string   the text as it is
// Throws Failure when the text does not fit, with what would have.
void setPortFromText(QCPort& port, const std::string& text);

}  // namespace host
