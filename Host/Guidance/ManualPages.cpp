// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Guidance/ManualPages.h"

#include "Host/Guidance/OptionFacts.h"
#include "Host/Guidance/ProgramFacts.h"
#include "Host/Guidance/TextBlocks.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace host {
namespace {

constexpr const char* kExamples = "Examples:";
constexpr const char* kExitCodes = "Exit codes:";
constexpr std::size_t kCommandWidth = 66;  // of 80, less what they are set in by

// As roff takes it: no character means more than itself. Minus signs stay such that a command can be copied.
std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '\\':
        result += "\\e";
        break;
      case '-':
        result += "\\-";
        break;
      case '\'':
        result += "\\(aq";
        break;
      case '`':
        result += "\\(ga";
        break;
      case '^':
        result += "\\(ha";
        break;
      case '~':
        result += "\\(ti";
        break;
      case '"':
        result += "\\(dq";
        break;
      default:
        result += c;
    }
  }
  return result;
}

// Whether a word is one that is typed as it stands. Others are prose, whose hyphens are no minus signs.
bool isTyped(std::string_view word) {
  return word.starts_with('-') || word.find_first_of("/=.:#~$%_\"") != std::string_view::npos ||
         std::ranges::any_of(word, [](char c) { return c >= '0' && c <= '9'; });
}

// Sentences begin on lines of their own, as roff wants it; no line is long, and none begins with a control character.
std::string prose(std::string_view text) {
  std::string result;
  std::size_t column = 0;
  std::istringstream stream{std::string(text)};
  bool endsSentence = false;
  for (std::string word; stream >> word;) {
    std::string shown = escaped(word);
    if (!isTyped(word)) {
      for (std::size_t at = 0; (at = shown.find("\\-", at)) != std::string::npos;) shown.replace(at, 2, "-");
    }
    const bool isNewLine = column == 0 || endsSentence || column + 1 + shown.size() > 78;
    if (isNewLine && shown.starts_with('.')) shown.insert(0, "\\&");
    if (column > 0) result += isNewLine ? '\n' : ' ';
    column = isNewLine ? shown.size() : column + 1 + shown.size();
    result += shown;
    endsSentence = word.ends_with('.') || word.ends_with('?');
  }
  return result + "\n";
}

std::string bold(std::string_view text) {
  return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(std::string_view text) {
  return "\\fI" + escaped(text) + "\\fR";
}

std::string tagged(const std::string& tag, std::string_view text) {
  return ".TP\n" + tag + "\n" + prose(text);
}

std::string section(const char* title, const std::string& text) {
  return text.empty() ? "" : std::string(".SH ") + title + "\n" + text;
}

std::string commandLines(const std::vector<std::string>& lines, bool isFirst) {
  std::string text = std::string(isFirst ? "" : ".PP\n") + ".in +4n\n.EX\n";
  for (const std::string& line : lines) {
    const std::string shown = escaped(brokenCommand(line, kCommandWidth));
    text += (shown.starts_with('.') ? "\\&" : "") + shown + "\n";
  }
  return text + ".EE\n.in\n";
}

std::string block(const TextBlock& block, bool isFirst) {
  switch (block.kind) {
    case TextBlock::Kind::Paragraph:
      return (isFirst ? "" : ".PP\n") + prose(block.text);
    case TextBlock::Kind::Verbatim:
      return commandLines(block.lines, isFirst);
    case TextBlock::Kind::Definitions:
      break;
  }
  std::string text;
  for (const auto& [term, meaning] : block.definitions) text += tagged(bold(term), meaning);
  return text;
}

// What the footer says: in front of "Examples:" and behind them, and the examples.
struct FooterParts {
  std::string description;
  std::string examples;
};

FooterParts footerParts(const CLI::App& command) {
  FooterParts parts;
  bool areExamples = false;
  for (const TextBlock& each : textBlocks(command.get_footer())) {
    if (each.kind == TextBlock::Kind::Paragraph) {
      areExamples = each.text == kExamples;
      if (areExamples || each.text.starts_with(kExitCodes)) continue;
    }
    std::string& text = areExamples ? parts.examples : parts.description;
    text += block(each, areExamples && text.empty());
  }
  return parts;
}

std::string value(const CLI::Option& option) {
  const std::string name = valueName(option);
  return italic(name) + (takesRow(option) && !name.ends_with("...") ? " ..." : "");
}

std::string optionTag(const CLI::Option& option) {
  std::string tag;
  for (const std::string& name : namesOf(option)) tag += (tag.empty() ? "" : ", ") + bold(name);
  return takesValue(option) ? tag + " " + value(option) : tag;
}

std::string options(const CLI::App& command) {
  std::string text;
  for (const CLI::Option* option : shownPositionals(command)) {
    text += tagged(value(*option), option->get_description() + ".");
  }
  for (const CLI::Option* option : shownOptions(command)) {
    text += tagged(optionTag(*option), option->get_description() + ".");
  }
  return text;
}

std::string synopsis(const CLI::App& command, const std::string& name) {
  std::string text = bold(name);
  if (command.get_parent() == nullptr) return text + " " + italic("COMMAND") + " [" + italic("OPTION") + " ...]\n";
  text += " [" + italic("OPTION") + " ...]";
  for (const CLI::Option* option : shownOptions(command)) {
    if (option->get_required())
      text += " " + bold("--" + option->get_lnames().at(0)) + " " + italic(valueName(*option));
  }
  for (const CLI::Option* option : shownPositionals(command)) {
    text += option->get_required() ? " " + value(*option) : " [" + value(*option) + "]";
  }
  return text + "\n";
}

std::string facts(std::span<const Fact> list) {
  std::string text;
  for (const Fact& fact : list) text += tagged(bold(fact.word), fact.meaning);
  return text;
}

std::string exitStatus() {
  std::string text;
  for (const Fact& code : exitCodes()) text += tagged(bold(code.word), std::string(code.meaning) + ".");
  return text + ".PP\n" +
         prose("A failure is told in one line on standard error, and leaves existing files as they were.");
}

std::string pageName(const CLI::App& command) {
  return command.get_parent() == nullptr ? command.get_name() : "vorto-" + command.get_name();
}

std::string reference(const CLI::App& command) {
  return ".BR " + escaped(pageName(command)) + " (1)";
}

std::string seeAlso(const CLI::App& app, const CLI::App& command) {
  std::vector<std::string> references;
  if (&app != &command) references.push_back(reference(app));
  for (const CLI::App* other : shownCommands(app)) {
    if (other != &command) references.push_back(reference(*other));
  }
  std::string text;
  for (const std::string& each : references) text += each + (&each == &references.back() ? "\n" : " ,\n");
  return text;
}

std::string sentence(const std::string& text) {
  return text.ends_with('.') ? text : text + ".";
}

std::string lowerStart(std::string text) {
  if (!text.empty() && text[0] >= 'A' && text[0] <= 'Z') text[0] = static_cast<char>(text[0] - 'A' + 'a');
  if (text.ends_with('.')) text.pop_back();
  return text;
}

std::string upperCase(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

std::string commandList(const CLI::App& app) {
  std::string text;
  for (const CLI::App* command : shownCommands(app)) {
    text += tagged(bold(command->get_name()), command->get_description() + ".");
  }
  return text;
}

ManualPage page(const CLI::App& app, const CLI::App& command) {
  const std::string name = pageName(command);
  const bool isProgram = &app == &command;
  const FooterParts footer = footerParts(command);
  std::string text = ".\\\" Made by \"vorto manual\" of what the program declares.\n.TH " + escaped(upperCase(name)) +
                     " 1 \"\" \"Vorto " VORTO_VERSION "\" \"User Commands\"\n.nh\n.ad l\n";
  text += section("NAME", escaped(name) + " \\-\n" + prose(lowerStart(command.get_description())));
  text += section("SYNOPSIS", synopsis(command, isProgram ? name : app.get_name() + " " + command.get_name()));
  text += section("DESCRIPTION", prose(sentence(command.get_description())) + footer.description);
  if (isProgram) text += section("COMMANDS", commandList(app));
  text += section("OPTIONS", options(command));
  text += section("EXAMPLES", footer.examples);
  text += section("EXIT STATUS", exitStatus());
  text += section("ENVIRONMENT", facts(environmentVariables()));
  text += section("FILES", facts(knownFolders()));
  text += section("SEE ALSO", seeAlso(app, command));
  return {name + ".1", text};
}

}  // namespace

std::vector<ManualPage> manualPages(const CLI::App& app) {
  std::vector<ManualPage> pages{page(app, app)};
  for (const CLI::App* command : shownCommands(app)) pages.push_back(page(app, *command));
  return pages;
}

}  // namespace host
