// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace host {

// A manual page of section 1, for man: "vorto.1", or "vorto-render.1" of a command.
struct ManualPage {
  std::string file;
  std::string text;  // roff with the man macros, in ASCII
};

// The page of the program, then one for each command that --help shows, made of what they declare.
std::vector<ManualPage> manualPages(const CLI::App& app);

}  // namespace host
