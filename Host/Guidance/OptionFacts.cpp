// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Guidance/OptionFacts.h"

#include <CLI/CLI.hpp>
#include <map>
#include <sstream>

namespace host {
namespace {

// What the parsers of these options know by name. Those of the options that are checked by CLI::IsMember are not here.
const std::map<std::string, const char*, std::less<>>& choiceTable() {
  static const std::map<std::string, const char*, std::less<>> kTable = {
      {"--alpha", "keep opaque gray"},
      {"--channels", "auto gray gray+alpha rgb rgba"},
      {"--codec", "h264 hevc vp9 av1 prores dnxhr ffv1 png"},
      {"--compression", "none deflate lzw packbits zstd rle zip zips piz pxr24 b44 b44a dwaa dwab 444 422 420"},
      {"--depth", "8 16 half float"},
      {"--filter", "nearest box linear cubic lanczos"},
      {"--fit", "stretch fit fill"},
      {"--format", "png jpg tif exr webp bmp tga dpx hdr jp2 heic ppm pnm pfm mp4 mov mkv webm avi y4m raw"},
      {"--pixel-format", "rgba8 argb8 yuv422 rgba16 rgb16 la16 l16 rgbahalf rgbafloat"},
      {"--place", "center top-left top top-right left right bottom-left bottom bottom-right fit fill stretch"},
      {"--sampling", "420 422 444 rgb"},
      {"--speed", "ultrafast superfast veryfast faster fast medium slow slower veryslow"},
      {"--when-short", "hold loop end"},
  };
  return kTable;
}

// The descriptions of what checks the option's values, as they stand behind the name of the type: "{xml,binary}".
std::vector<std::string> checksOf(const CLI::Option& option) {
  std::vector<std::string> checks;
  auto& changeable = const_cast<CLI::Option&>(option);  // the library has no look at validators that changes nothing
  try {
    for (int i = 0;; ++i) checks.push_back(changeable.get_validator(i)->get_description());
  } catch (const CLI::OptionNotFound&) {
    return checks;
  }
}

std::vector<std::string> members(const std::string& check) {
  std::vector<std::string> words;
  if (!check.starts_with('{') || !check.ends_with('}')) return words;
  std::istringstream list(check.substr(1, check.size() - 2));
  for (std::string word; std::getline(list, word, ',');) words.push_back(word);
  return words;
}

}  // namespace

std::vector<const CLI::App*> shownCommands(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

std::vector<const CLI::Option*> shownOptions(const CLI::App& command) {
  return command.get_options(
      [](const CLI::Option* option) { return !option->get_group().empty() && option->nonpositional(); });
}

std::vector<const CLI::Option*> shownPositionals(const CLI::App& command) {
  return command.get_options(
      [](const CLI::Option* option) { return !option->get_group().empty() && !option->nonpositional(); });
}

std::vector<std::string> namesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

bool takesValue(const CLI::Option& option) {
  return option.get_items_expected_max() > 0;
}

bool isRepeatable(const CLI::Option& option) {
  return option.get_items_expected_max() > 1;
}

bool takesRow(const CLI::Option& option) {
  return isRepeatable(option) && option.get_allow_extra_args();
}

std::string valueName(const CLI::Option& option) {
  std::string name = option.get_type_name();
  const std::vector<std::string> checks = checksOf(option);
  for (auto check = checks.rbegin(); check != checks.rend(); ++check) {
    if (!check->empty() && name.ends_with(":" + *check)) name.resize(name.size() - check->size() - 1);
  }
  return name;
}

std::vector<std::string> choicesOf(const CLI::Option& option) {
  for (const std::string& check : checksOf(option)) {
    if (auto words = members(check); !words.empty()) return words;
  }
  for (const std::string& name : namesOf(option)) {
    const auto found = choiceTable().find(name);
    if (found == choiceTable().end()) continue;
    std::istringstream list(found->second);
    return {std::istream_iterator<std::string>(list), {}};
  }
  return {};
}

}  // namespace host
