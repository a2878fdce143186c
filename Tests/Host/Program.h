// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Tests/Support/ChildProcess.h"

#include <string>
#include <vector>

// What a run of the program left behind.
struct ProgramRun {
  int exitCode = -1;  // 128 + N when a signal N ended it
  std::string out;
  std::string err;
};

struct RunOptions {
  std::vector<std::string> environment;  // "NAME=value", added to the bare one
  unsigned long fileSizeLimit = 0;       // bytes; 0 for none
  std::string input = "/dev/null";       // a file on the standard input
};

using Words = std::vector<std::string>;

// Runs the built vorto with the arguments, in an environment of nothing but a home folder of its own and the locale,
// and waits for it.
ProgramRun vorto(const Words& arguments, const RunOptions& options = {});

// The same, and fails the test when the program does.
ProgramRun vortoSucceeds(const Words& arguments, const RunOptions& options = {});

// INPUT to OUTPUT through an effect, with more arguments and as raw values. "Levels" changes nothing unless told to.
void passThrough(const std::string& input, const std::string& output, const Words& arguments = {},
                 const std::string& effect = "Levels");

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& bytes);
