// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Guidance/HelpFormatter.h"

#include "Host/Guidance/OptionFacts.h"
#include "Host/Guidance/TextBlocks.h"

namespace host {
namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kDescriptions = 26;  // where they begin

}  // namespace

HelpFormatter::HelpFormatter() {
  column_width(kDescriptions);
}

std::string HelpFormatter::make_footer(const CLI::App* app) const {
  return printedBlocks(textBlocks(app->get_footer()), kWidth);
}

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const {
  if (!takesValue(*option)) return "";
  std::string text = " " + valueName(*option);
  if (takesRow(*option)) text += " ...";
  if (option->get_required()) text += " REQUIRED";
  return text;
}

// The formatter sets the further lines in.
std::string HelpFormatter::make_option_desc(const CLI::Option* option) const {
  return wrappedText(option->get_description(), kWidth - kDescriptions, 0, 0);
}

std::string HelpFormatter::make_subcommand(const CLI::App* command) const {
  std::string name = "  " + command->get_name();
  name.resize(std::max<std::size_t>(name.size() + 2, 16), ' ');
  return name + wrappedText(command->get_description(), kWidth, name.size(), name.size()) + "\n";
}

}  // namespace host
