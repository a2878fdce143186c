// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/OptionValues.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

struct RenderOptions {
  std::string effect;
  std::vector<std::string> inputs;
  std::string output;
  std::vector<std::string> values;  // "port=value"
  std::vector<std::string> states;  // "port=FILE"
  FramingOptions framing;
  std::optional<double> time;
  std::string depth;     // "8", "16", "half", "float", or empty for that of the inputs
  std::string layout;    // the name of a pixel format (Layouts.h), or empty
  std::string alpha;     // "keep", "opaque", "gray", or empty for keep
  std::string channels;  // "auto", "gray", "gray+alpha", "rgb", "rgba"; auto when empty
  EncodingOptions encoding;
  ColorOptions colors;
  bool isVerbose = false;
  std::string frames;  // "A-B", or empty for the frames that exist
  double rate = 25;    // frames per second
};

// Renders a picture, or one for every frame of a sequence, and writes it. What can be checked is checked before the
// first picture is rendered.
void runRender(const RenderOptions& options);

}  // namespace host
