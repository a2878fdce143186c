// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

// A command line of bash, as far as it is typed, in words without quotes and backslashes.
struct BashLine {
  std::vector<std::string> words;  // at least one; the last may be empty
  std::size_t kept = 0;            // how much of the last word bash leaves in front of what it inserts
  char quote = 0;                  // the one that is open at the end of the line
};

// `breaks` are the characters that end words for bash's line editor, $COMP_WORDBREAKS.
BashLine bashLine(std::string_view line, std::string_view breaks);

// A text as it stands behind the open quote, or unquoted.
std::string bashQuoted(std::string_view text, char quote);

}  // namespace host
