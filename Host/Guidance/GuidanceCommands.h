// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace host {

struct ManualOptions {
  std::string page;    // "vorto", or a command's name
  std::string folder;  // where all pages go
};

struct CompletionOptions {
  std::string shell;
};

// Prints a manual page, or writes all of them. Throws Failure for an unknown one, and for a folder that is none.
void runManual(const CLI::App& app, const ManualOptions& options);

// Prints the script of a shell. Throws Failure for an unknown one.
void runCompletion(const CompletionOptions& options);

}  // namespace host
