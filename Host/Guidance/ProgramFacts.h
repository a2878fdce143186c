// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <span>
#include <string>

namespace host {

// A word and what it means.
struct Fact {
  const char* word;
  const char* meaning;
};

std::span<const Fact> exitCodes();             // of ExitCode
std::span<const Fact> environmentVariables();  // that people may set
std::span<const Fact> knownFolders();          // and files

std::string exitCodesText();  // in one sentence, for --help

}  // namespace host
