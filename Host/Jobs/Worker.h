// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Jobs/JobOutput.h"
#include "Host/Rendering/FrameRendering.h"

#include <functional>
#include <string>
#include <vector>

namespace host {

// What a worker makes of its command line before it renders.
struct WorkerParts {
  RenderSetup setup;
  JobOutput output;
};

// The whole of a process that renders frames for another one, which started it: task after task until that one ends it
// or is gone. What fails goes there as well, what `prepare` throws too. Loading the effects and setting their ports
// says nothing, as the other one has said it. Throws Failure when no other process is connected.
void runWorker(const std::vector<std::string>& pythonFiles, const std::function<WorkerParts()>& prepare);

}  // namespace host
