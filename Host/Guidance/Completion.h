// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace host {

struct Candidate {
  std::string word;
  std::string description;  // in few words, or empty
};

// What a word can become.
struct Completions {
  enum class Paths { None, Files, Folders };  // beside the candidates
  Paths paths = Paths::None;
  std::string prefix;  // what of the word stays in front of candidates and paths: "gradient="
  std::vector<Candidate> candidates;
};

// Of the last of the words behind the program's name, as far as it is typed; it may be empty. Commands and options come
// from their declarations, effects, ports, presets and their values from where the program finds them. Nothing that is
// wrong with the words is told: there are no candidates then.
Completions completionsOf(const CLI::App& app, const std::vector<std::string>& words);

}  // namespace host
