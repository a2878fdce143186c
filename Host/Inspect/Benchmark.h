// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/InspectOptions.h"

namespace host {

// Prints how long an effect's pictures take to come, as a window of the inspector would have them: the first one, those
// of a drag, the full one when the hand rests. Needs no display, but effects that are loaded. Throws Failure.
void runBenchmark(const InspectOptions& options, int argc, char** argv);

}  // namespace host
