#include "Host/CommandLine.h"
#include "Host/InspectCommand.h"

int main(int argc, char** argv) {
  return host::runProgram(argc, argv, [argv](const host::InspectOptions&) { host::executeInspector(argv); });
}
