// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/RenderCommand.h"

#include <string>
#include <vector>

namespace host {

struct SubmitOptions {
  std::vector<std::string> slurm;  // options of sbatch
  unsigned retries = 2;            // of a task
  std::string logs;                // a folder; empty: "logs" beside the output
  std::string after;               // jobs that must have succeeded before
  bool isDryRun = false;
  std::vector<std::string> command;  // "render" and its arguments
};

// An option of a command line, as it was given: "--input" with its values; none for a flag.
struct GivenOption {
  std::string name;
  std::vector<std::string> values;
};

// A command line of render, taken apart.
struct RenderCommandLine {
  RenderOptions options;
  std::vector<GivenOption> given;  // but for the effect
};

// Gives the frames of a render command to Slurm, in chunks, and where the output is a clip, its assembly behind them.
// What can be checked of the command is checked before. Prints the numbers of the jobs, or, dry, their scripts. Throws
// Failure.
void runSubmit(const SubmitOptions& options, const RenderCommandLine& render);

}  // namespace host
