// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace host {

// Runs files of Python, in their order, whose effects then are in the registry. Loads the module that holds the
// interpreter on the first call. Throws Failure for one that cannot be run, whose traceback is on standard error then,
// and when the interpreter or the package vorto is not installed, naming the packages that bring them.
void runPythonFiles(const std::vector<std::string>& files);

}  // namespace host
