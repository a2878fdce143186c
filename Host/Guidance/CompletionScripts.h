// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace host {

// "bash", "zsh", "fish"
const std::vector<std::string>& completionShells();

// What makes a shell complete the program's commands; every word comes from `vorto complete` (Completion.h). Null for
// an unknown shell.
const char* completionScript(const std::string& shell);

}  // namespace host
