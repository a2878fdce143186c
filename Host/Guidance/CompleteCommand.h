// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace host {

// What the scripts of CompletionScripts.h run, in two forms:
//
//   vorto complete -- WORD ...              the words behind the program's name, the last as far as it is typed. Prints
//                                           "words", "files" or "folders", a tab and what of the last word stays in
//                                           front; then a line for each candidate, with a tab and its description
//   vorto complete --bash BREAKS -- LINE    a line as bash has it, up to the cursor, and $COMP_WORDBREAKS. Prints the
//                                           same three words; of a file's name what is typed; what is to be put in
//                                           front of names of files; then a line for each word as bash inserts it
void runComplete(const CLI::App& app, const std::vector<std::string>& arguments);

}  // namespace host
