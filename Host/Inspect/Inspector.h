// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/InspectOptions.h"

namespace host {

// Opens the window and returns once it is closed, or writes its screenshot. Throws Failure.
void runInspector(const InspectOptions& options, int argc, char** argv);

}  // namespace host
