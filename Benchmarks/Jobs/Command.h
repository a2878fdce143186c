// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

// What a whole command cost, with the processes that it started and waited for.
struct Cost {
  bool succeeded = false;
  double seconds = 0;      // of processor time, of the program and the system for it
  double wallSeconds = 0;  // from its start to its end
  double mebibytes = 0;    // most memory at once
};

// Runs a program, found by PATH, in a folder, with its outputs thrown away.
Cost runCommand(const std::string& folder, const std::vector<std::string>& words);

// The words of a line, at its spaces.
std::vector<std::string> wordsOf(const std::string& line);
