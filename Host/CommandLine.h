#pragma once

namespace host {

// The program: reads the command line, runs the command, reports a failure as one line on standard error, and answers
// the exit code.
int runProgram(int argc, char** argv);

}  // namespace host
