#include "Host/CommandLine.h"

int main(int argc, char** argv) {
  return host::runProgram(argc, argv);
}
