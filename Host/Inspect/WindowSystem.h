// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/InspectOptions.h"

namespace host {

// To be called before the application object is made: chooses where windows go and how large a point is. A screenshot
// without a display is drawn off the screen. Throws Failure when a window is wanted and there is no display; one that
// cannot be reached ends the program with a message.
void prepareWindowSystem(const InspectOptions& options);

}  // namespace host
