// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace host {

struct Frei0rOptions {
  std::vector<std::string> effects;  // none: all
  std::string output;                // a folder; empty: ~/.frei0r-1/lib, where hosts of frei0r look
  bool isList = false;
  bool isShipped = false;  // of all, those that came with the program
};

// Writes stubs by which the effects are plug-ins of frei0r, or lists what these are. Throws Failure; stubs that were
// written before stay.
void runFrei0r(const Frei0rOptions& options);

}  // namespace host
