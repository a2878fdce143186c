// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Files/FrameFiles.h"
#include "Host/Rendering/ColorFlow.h"
#include "Host/Rendering/Framing.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

// An effect with its pictures, as people look at it while they set its parameters: what the command line of `render`
// says, read.
struct PreviewSetup {
  std::string effect = {};
  std::vector<std::string> inputs = {};    // stills, sequences, clips
  std::vector<std::string> pictures = {};  // "port=FILE", of image ports that are no inputs
  std::vector<std::string> python = {};    // files that bring effects
  Framing framing = {};
  std::optional<Depth> depth = {};
  ColorWishes colors = {};
  std::optional<double> time = {};  // for the effect: of all frames; of a transition between stills where it begins
  std::optional<FrameRange> frames = {};  // of sequences and clips; else all that there are
  std::optional<double> rate = {};        // frames per second of sequences, above 0; else 25, or the leading clip's
};

}  // namespace host
