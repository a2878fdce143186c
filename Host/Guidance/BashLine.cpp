// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Guidance/BashLine.h"

namespace host {
namespace {

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n';
}

}  // namespace

BashLine bashLine(std::string_view line, std::string_view breaks) {
  BashLine result;
  result.words.emplace_back();
  bool isInWord = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    std::string& word = result.words.back();
    const char c = line[i];
    if (c == result.quote) {
      result.quote = 0;
    } else if (c == '\\' && result.quote != '\'' && i + 1 < line.size()) {
      word += line[++i];
      isInWord = true;
    } else if (result.quote) {
      word += c;
    } else if (c == '"' || c == '\'') {
      result.quote = c;
      result.kept = word.size();
      isInWord = true;
    } else if (isBlank(c)) {
      if (isInWord) result.words.emplace_back();
      isInWord = false;
      result.kept = 0;
    } else {
      word += c;
      isInWord = true;
      if (breaks.find(c) != std::string_view::npos) result.kept = word.size();
    }
  }
  return result;
}

std::string bashQuoted(std::string_view text, char quote) {
  if (quote == '\'') return std::string(text);
  const std::string_view special = quote == '"' ? "\"$`\\" : " \t\"'\\$`&;|<>()*?[]{}!#~";
  std::string quoted;
  for (const char c : text) {
    if (special.find(c) != std::string_view::npos) quoted += '\\';
    quoted += c;
  }
  return quoted;
}

}  // namespace host
