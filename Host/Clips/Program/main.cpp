// SPDX-License-Identifier: BSD-3-Clause
// Reads or writes one clip for the program that starts it, and can be seen to die of it.
#include "Host/Clips/Program/AvErrors.h"
#include "Host/Clips/Program/Commands.h"

#include <cstdio>
#include <exception>
#include <string_view>

int main(int argc, char** argv) {
  const std::string_view command = argc == 2 ? argv[1] : "";
  if (command != "read" && command != "write") {
    std::fputs("vorto-clips is started by vorto, to read and write clips\n", stderr);
    return 2;
  }
  host::silenceLibraries();
  try {
    return command == "read" ? host::runReader() : host::runWriter();
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "vorto-clips: %s\n", failure.what());
    return 1;
  }
}
