// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/CommandLine.h"
#include "Host/Inspect/Inspector.h"

#include <cstdlib>

int main(int argc, char** argv) {
  return host::runProgram(
      argc, argv, [argc, argv](const host::InspectOptions& options) { host::runInspector(options, argc, argv); });
}
