// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bindings/Frei0r/Out/PlugIn.h"

#include <mutex>

namespace frei0r {

// A plug-in of the registry, with the texts that hosts keep pointers to: it lives as long as the process.
class Effect {
 public:
  explicit Effect(PlugIn plugIn) : plugIn_(std::move(plugIn)) {}
  const PlugIn& plugIn() const { return plugIn_; }
  const std::vector<Parameter>& parameters() const { return plugIn_.parameters.parameters; }

  // The effect of a name, the same for every call. Loads the registry on the first one. Throws Failure for one that
  // there is none of. Call it with the registry locked.
  static const Effect& named(const std::string& name, std::uint32_t inputs);

 private:
  const PlugIn plugIn_;
};

// Held by whoever makes patches or values, or reads their descriptions: hosts come from any thread, and these are made
// on one at a time. Rendering goes on meanwhile.
std::mutex& registryLock();

}  // namespace frei0r
