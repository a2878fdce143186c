// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

namespace host {

struct StateOptions {
  std::string file;  // or preset:NAME
  bool presets = false;
  bool json = false;
  std::string convert;  // "xml", "binary", "text", "css", "svg", "ggr", or empty to print
  std::string form;     // "dictionary", "archive", or empty to keep the file's
  std::string output;
};

// Prints a parameter's state, or writes it in another format; or lists the presets.
void runState(const StateOptions& options);

}  // namespace host
