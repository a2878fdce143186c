// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace host {

class EffectRendering;

// Sets the effect's ports from "port=value" and "port=FILE" (a state file). Throws Failure for the first that does not
// fit.
void setParameters(EffectRendering& rendering, const std::vector<std::string>& values,
                   const std::vector<std::string>& states);

}  // namespace host
