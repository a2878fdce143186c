// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

// A part of the text that stands below the options in --help.
struct TextBlock {
  enum class Kind {
    Paragraph,    // one line of any length
    Definitions,  // "  term  what it means", lines that are further in going on with what is above them
    Verbatim      // other lines that are set in: commands
  };
  Kind kind = Kind::Paragraph;
  std::string text;  // of a paragraph
  std::vector<std::pair<std::string, std::string>> definitions;
  std::vector<std::string> lines;  // verbatim, without the blanks that all of them begin with
};

std::vector<TextBlock> textBlocks(std::string_view text);

// The text in lines of at most `width` characters (bytes; longer words stay whole), all but the first set in by
// `indent` blanks, the first beginning at `column`.
std::string wrappedText(std::string_view text, std::size_t width, std::size_t indent, std::size_t column);

// A command in lines of at most that width, where its options allow it, with backslashes at their ends.
std::string brokenCommand(const std::string& command, std::size_t width);

// The blocks once more as text of that width, with an empty line between them.
std::string printedBlocks(const std::vector<TextBlock>& blocks, std::size_t width);

}  // namespace host
