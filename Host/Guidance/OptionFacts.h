// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace host {

// What the declarations of commands and options say of them. Hidden ones are those without a group.
std::vector<const CLI::App*> shownCommands(const CLI::App& app);
std::vector<const CLI::Option*> shownOptions(const CLI::App& command);      // those with dashes
std::vector<const CLI::Option*> shownPositionals(const CLI::App& command);  // the others

// "-o" and "--output", the short ones first.
std::vector<std::string> namesOf(const CLI::Option& option);
bool takesValue(const CLI::Option& option);    // false for flags
bool isRepeatable(const CLI::Option& option);  // may be given, or have values, several times
bool takesRow(const CLI::Option& option);      // one mention of it takes all values up to the next option

// What the value is called in the help: "FILE", "PORT=VALUE"; without the names of what checks it.
std::string valueName(const CLI::Option& option);

// The words that the value is one of, where the option has such; others may be possible too.
std::vector<std::string> choicesOf(const CLI::Option& option);

}  // namespace host
