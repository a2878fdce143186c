// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace host {

struct EffectsOptions {
  bool json = false;
  std::vector<std::string> python;  // files that bring effects
};

// Prints every effect by kind, with its ports, their kinds, ranges and defaults.
void runEffects(const EffectsOptions& options);

}  // namespace host
