// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Guidance/CompleteCommand.h"

#include "Host/Guidance/BashLine.h"
#include "Host/Guidance/Completion.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/StandardOutput.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace host {
namespace {

constexpr std::size_t kLongestDescription = 70;

const char* nameOf(Completions::Paths paths) {
  switch (paths) {
    case Completions::Paths::Files:
      return "files";
    case Completions::Paths::Folders:
      return "folders";
    case Completions::Paths::None:
      break;
  }
  return "words";
}

// On one line, and short enough for a list.
std::string shortened(std::string text) {
  if (const std::size_t end = text.find("; "); end != std::string::npos) text.resize(end);
  std::ranges::replace_if(
      text, [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
  if (text.size() <= kLongestDescription) return text;
  text.resize(text.rfind(' ', kLongestDescription));
  return text + " ...";
}

bool isOneLine(const Candidate& candidate) {
  return candidate.word.find_first_of("\t\n") == std::string::npos;
}

void printWords(const Completions& completions) {
  printText(std::string(nameOf(completions.paths)) + "\t" + completions.prefix + "\n");
  for (const Candidate& candidate : completions.candidates) {
    if (isOneLine(candidate)) printText(candidate.word + "\t" + shortened(candidate.description) + "\n");
  }
}

void printForBash(const CLI::App& app, const std::string& breaks, const std::string& line) {
  const BashLine typed = bashLine(line, breaks);
  const Completions completions = completionsOf(app, {typed.words.begin() + 1, typed.words.end()});
  const std::string& prefix = completions.prefix;
  const std::string& last = typed.words.back();
  printText(std::string(nameOf(completions.paths)) + "\n");
  printText(last.substr(std::min(last.size(), std::max(prefix.size(), typed.kept))) + "\n");
  printText((prefix.size() > typed.kept ? prefix.substr(typed.kept) : "") + "\n");
  for (const Candidate& candidate : completions.candidates) {
    const std::string word = prefix + candidate.word;
    if (!isOneLine(candidate) || word.size() < typed.kept) continue;
    // Beside names of files bash does the quoting.
    const std::string rest = word.substr(typed.kept);
    printText((completions.paths == Completions::Paths::None ? bashQuoted(rest, typed.quote) : rest) + "\n");
  }
}

}  // namespace

void runComplete(const CLI::App& app, const std::vector<std::string>& arguments) {
  if (arguments.size() == 4 && arguments[0] == "--bash" && arguments[2] == "--") {
    printForBash(app, arguments[1], arguments[3]);
  } else if (!arguments.empty() && arguments[0] == "--") {
    printWords(completionsOf(app, {arguments.begin() + 1, arguments.end()}));
  } else {
    throw Failure(ExitCode::Usage, "complete is for the scripts that vorto completion prints");
  }
}

}  // namespace host
