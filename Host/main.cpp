// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/CommandLine.h"
#include "Host/Commands/InspectCommand.h"

int main(int argc, char** argv) {
  return host::runProgram(argc, argv, [argv](const host::InspectOptions&) { host::executeInspector(argv); });
}
