// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Guidance/Completion.h"

#include "Host/Guidance/CompletionValues.h"
#include "Host/Guidance/OptionFacts.h"
#include "Host/Texts/TextReader.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <set>

namespace host {
namespace {

const CLI::Option* optionNamed(const CLI::App& command, const std::string& name) {
  for (const CLI::Option* option : shownOptions(command)) {
    const auto names = namesOf(*option);
    if (std::ranges::find(names, name) != names.end()) return option;
  }
  return nullptr;
}

// Where in a command line the last word stands.
class Place {
 public:
  Place(const CLI::App& command, const std::vector<std::string>& words) : command_(command) {
    for (const std::string& word : words) pass(word);
  }

  Completions completions(const std::string& typed) const {
    const std::size_t equals = typed.find('=');
    if (typed.starts_with("--") && equals != std::string::npos && !needsValue()) {
      const CLI::Option* option = optionNamed(command_, typed.substr(0, equals));
      if (!option || !takesValue(*option)) return {};
      Completions values = valuesOf(*option, typed.substr(equals + 1));
      values.prefix.insert(0, typed, 0, equals + 1);
      return values;
    }
    if (typed.starts_with('-') && !needsValue()) return options();
    if (option_) return valuesOf(*option_, typed);
    const auto positionals = shownPositionals(command_);
    if (positionals.empty()) return typed.empty() ? options() : Completions();
    const std::size_t index = std::min(positionals_.size(), positionals.size() - 1);
    if (positionals_.size() > index && !takesRow(*positionals[index])) return typed.empty() ? options() : Completions();
    return valuesOf(*positionals[index], typed);
  }

 private:
  bool needsValue() const { return option_ && !hasValue_; }

  void pass(const std::string& word) {
    if (needsValue()) {
      hasValue_ = true;
      if (!takesRow(*option_)) option_ = nullptr;
    } else if (word.starts_with('-') && word.size() > 1) {
      passOption(word);
    } else if (!option_) {
      positionals_.push_back(word);
    }
  }

  void passOption(const std::string& word) {
    const std::size_t equals = word.find('=');
    option_ = optionNamed(command_, word.substr(0, equals));
    if (!option_) return;
    given_.insert(option_);
    hasValue_ = equals != std::string::npos;
    if (!takesValue(*option_) || (hasValue_ && !takesRow(*option_))) option_ = nullptr;
  }

  Completions options() const {
    Completions completions;
    for (const CLI::Option* option : shownOptions(command_)) {
      if (given_.contains(option) && !isRepeatable(*option)) continue;
      completions.candidates.push_back({namesOf(*option).back(), option->get_description()});
    }
    return completions;
  }

  Completions valuesOf(const CLI::Option& option, const std::string& typed) const {
    const std::vector<std::string> choices = choicesOf(option);
    Completions completions;
    for (const std::string& choice : choices) completions.candidates.push_back({choice, ""});
    if (!choices.empty()) return completions;
    return valueCompletions(valueName(option), {command_.get_name(), effect()}, typed);
  }

  std::string effect() const {
    const auto positionals = shownPositionals(command_);
    const bool hasEffect = !positionals.empty() && valueName(*positionals[0]) == "EFFECT";
    return hasEffect && !positionals_.empty() ? positionals_[0] : "";
  }

  const CLI::App& command_;
  const CLI::Option* option_ = nullptr;  // the one that values belong to
  bool hasValue_ = false;
  std::set<const CLI::Option*> given_;
  std::vector<std::string> positionals_;
};

Completions commands(const CLI::App& app) {
  Completions completions;
  for (const CLI::App* command : shownCommands(app)) {
    completions.candidates.push_back({command->get_name(), command->get_description()});
  }
  return completions;
}

Completions unfiltered(const CLI::App& app, std::vector<std::string> words) {
  const std::string typed = words.back();
  if (words.size() == 1) return typed.starts_with('-') ? Place(app, {}).completions(typed) : commands(app);
  const auto shown = shownCommands(app);
  const auto command = std::ranges::find_if(shown, [&](const CLI::App* each) { return each->get_name() == words[0]; });
  if (command == shown.end()) return {};
  words.erase(words.begin());
  words.pop_back();
  const auto dashes = std::ranges::find(words, "--");
  if (dashes == words.end()) return Place(**command, words).completions(typed);
  // Behind the dashes stands another command, where there is one.
  const auto positionals = shownPositionals(**command);
  if (positionals.empty() || valueName(*positionals[0]) != "-- render ...") return {};
  std::vector<std::string> inner(dashes + 1, words.end());
  if (inner.empty()) return {Completions::Paths::None, "", {{"render", "What the farm renders"}}};
  inner.push_back(typed);
  return unfiltered(app, inner);
}

}  // namespace

Completions completionsOf(const CLI::App& app, const std::vector<std::string>& words) {
  if (words.empty()) return {};
  Completions completions = unfiltered(app, words);
  const std::string typed = words.back().substr(std::min(completions.prefix.size(), words.back().size()));
  std::erase_if(completions.candidates,
                [&](const Candidate& each) { return !lowered(each.word).starts_with(lowered(typed)); });
  return completions;
}

}  // namespace host
