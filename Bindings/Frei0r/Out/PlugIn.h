// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bindings/Frei0r/Out/Parameter.h"
#include "Host/Rendering/Effects.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class QCPatch;

namespace frei0r {

// An effect as a plug-in of frei0r: a source, filter, or mixer of as many frames as it takes. One that takes another
// number of images in another of its kinds is more than one plug-in; so is one with one more port for an image than its
// kind has, which may be given as a frame or, in the other, as a picture's file.
struct PlugIn {
  std::string effect;
  std::uint32_t inputs = 0;
  host::EffectKind kind = host::EffectKind::Filter;
  std::string pictureKey;  // of the port that the last frame goes to, where it is none of the kind's
  std::string name;        // "Vorto Gradient Map"
  std::string file;        // "vorto_gradient_map", the stub's name without .so
  std::string description;
  ParameterList parameters;

  int type() const;              // F0R_PLUGIN_TYPE_...
  const char* typeName() const;  // "source", "filter", "mixer2", "mixer3"
};

// An effect, or one of its plug-ins, that there is no stub for, and why.
struct LeftOut {
  std::string effect;
  std::string reason;
};

struct PlugInList {
  std::vector<PlugIn> plugIns;
  std::vector<LeftOut> leftOut;
  std::size_t foreign = 0;  // how many came in through frei0r, which are left out too
};

// Of all effects of the registry, in its order.
PlugInList allPlugIns();

// Of one effect; nothing where it takes no such number of frames, or does not exist.
std::optional<PlugIn> plugInNamed(const std::string& effect, std::uint32_t inputs);

}  // namespace frei0r
