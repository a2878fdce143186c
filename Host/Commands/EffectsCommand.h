// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace host {

struct EffectsOptions {
  bool json = false;
};

// Prints every effect by kind, with its ports, their kinds, ranges and defaults.
void runEffects(const EffectsOptions& options);

}  // namespace host
