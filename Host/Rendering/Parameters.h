// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/States/StateFile.h"

#include <optional>
#include <string>
#include <vector>

class QCPort;

namespace host {

class EffectRendering;

// What a state file for the port holds; nothing when the port takes no states.
std::optional<StateKind> stateKindOf(const QCPort& port);

// Sets the effect's ports from "port=value" and "port=FILE" (a state file). Throws Failure for the first that does not
// fit.
void setParameters(EffectRendering& rendering, const std::vector<std::string>& values,
                   const std::vector<std::string>& states);

}  // namespace host
