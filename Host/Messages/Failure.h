// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <stdexcept>
#include <string>

namespace host {

// What the program returns to the shell.
enum class ExitCode {
  Success = 0,
  Unexpected = 1,  // a fault of the program itself, or no memory left
  Usage = 2,       // the command line names something that does not exist or does not fit
  Input = 3,       // a file could not be read, or holds something else than it should
  Output = 4,      // a file could not be written
  Effect = 5,      // the effect could not render
};

// Ends a command. The message is one line that says what was tried, on what, and why it failed.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode exitCode, const std::string& message) : std::runtime_error(message), code(exitCode) {}
  const ExitCode code;
};

// Inside a handler: what was caught, as a failure. Other things than exceptions of the standard library go on.
Failure caughtFailure();

}  // namespace host
