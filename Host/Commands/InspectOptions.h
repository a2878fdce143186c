// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/OptionValues.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

struct InspectOptions {
  std::string effect;  // empty to edit one state file alone
  std::vector<std::string> inputs;
  std::vector<std::string> files;   // to open as a double click does, without an effect
  std::vector<std::string> values;  // "port=value"
  std::vector<std::string> states;  // "port=FILE"; without an effect one, "kind=FILE"
  std::vector<std::string> python;  // files that bring effects
  FramingOptions framing;
  ColorOptions colors;
  std::optional<double> time;
  std::string depth;            // "8", "16", "half", "float", or empty for that of the inputs
  std::string frames;           // "A-B", or empty for the frames that exist
  std::optional<double> rate;   // frames per second of sequences
  std::string screenshot;       // a picture of the window to write instead of showing it, or empty
  bool isBenchmark = false;     // print how long pictures take, instead of showing them
  std::string appearance;       // "light", "dark", or empty for the desktop's
  std::optional<double> scale;  // device pixels per point, or none for the desktop's
};

}  // namespace host
