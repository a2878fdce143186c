#pragma once

#include "Host/InspectOptions.h"

namespace host {

// Opens the window and answers once it is closed, or writes its screenshot. Throws Failure.
void runInspector(const InspectOptions& options, int argc, char** argv);

}  // namespace host
