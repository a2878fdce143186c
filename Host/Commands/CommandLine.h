// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/InspectOptions.h"

#include <functional>

namespace host {

using InspectAction = std::function<void(const InspectOptions& options)>;

// The program: reads the command line, runs the command, reports a failure as one line on standard error, and returns
// the exit code. What `vorto inspect` does is the caller's: the inspector's own program opens the window, and the other
// one, which must not load the libraries of the window, hands over to it.
int runProgram(int argc, char** argv, const InspectAction& inspect);

}  // namespace host
