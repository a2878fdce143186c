// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Guidance/TextBlocks.h"

#include <algorithm>
#include <sstream>

namespace host {
namespace {

using Lines = std::vector<std::string>;

std::size_t indentOf(const std::string& line) {
  return std::min(line.find_first_not_of(' '), line.size());
}

// Where the meaning begins in "  term  meaning"; npos where there is no such gap.
std::size_t meaningOf(const std::string& line) {
  const std::size_t gap = line.find("  ", indentOf(line));
  return gap == std::string::npos ? gap : line.find_first_not_of(' ', gap);
}

// The first line, and those that are set in as far as it, are definitions, with no line before the first of them.
bool areDefinitions(const Lines& lines) {
  return std::ranges::all_of(lines, [&](const std::string& line) {
    return indentOf(line) > indentOf(lines[0]) || meaningOf(line) != std::string::npos;
  });
}

TextBlock definitions(const Lines& lines) {
  TextBlock block;
  block.kind = TextBlock::Kind::Definitions;
  for (const std::string& line : lines) {
    const std::size_t indent = indentOf(line);
    if (indent > indentOf(lines[0])) {
      block.definitions.back().second += " " + line.substr(indent);
      continue;
    }
    block.definitions.emplace_back(line.substr(indent, line.find("  ", indent) - indent), line.substr(meaningOf(line)));
  }
  return block;
}

TextBlock verbatim(const Lines& lines) {
  TextBlock block;
  block.kind = TextBlock::Kind::Verbatim;
  std::size_t least = std::string::npos;
  for (const std::string& line : lines) least = std::min(least, indentOf(line));
  for (const std::string& line : lines) block.lines.push_back(line.substr(least));
  return block;
}

TextBlock paragraph(const Lines& lines) {
  TextBlock block;
  for (const std::string& line : lines) block.text += (block.text.empty() ? "" : " ") + line;
  return block;
}

void take(Lines& lines, std::vector<TextBlock>& blocks) {
  if (lines.empty()) return;
  if (indentOf(lines[0]) == 0) {
    blocks.push_back(paragraph(lines));
  } else {
    blocks.push_back(areDefinitions(lines) ? definitions(lines) : verbatim(lines));
  }
  lines.clear();
}

std::string printedDefinitions(const TextBlock& block, std::size_t width) {
  std::size_t column = 0;
  for (const auto& [term, meaning] : block.definitions) column = std::max(column, term.size());
  column += 4;
  std::string text;
  for (const auto& [term, meaning] : block.definitions) {
    std::string line = "  " + term;
    line.resize(column, ' ');
    text += line + wrappedText(meaning, width, column, column) + "\n";
  }
  return text;
}

std::string printedBlock(const TextBlock& block, std::size_t width) {
  if (block.kind == TextBlock::Kind::Paragraph) return wrappedText(block.text, width, 0, 0) + "\n";
  if (block.kind == TextBlock::Kind::Definitions) return printedDefinitions(block, width);
  std::string text;
  for (const std::string& line : block.lines) text += "  " + brokenCommand(line, width - 2) + "\n";
  return text;
}

}  // namespace

std::vector<TextBlock> textBlocks(std::string_view text) {
  std::vector<TextBlock> blocks;
  Lines lines;
  std::istringstream stream{std::string(text)};
  for (std::string line; std::getline(stream, line);) {
    const bool isEmpty = indentOf(line) == line.size();
    if (isEmpty || (!lines.empty() && (indentOf(line) == 0) != (indentOf(lines[0]) == 0))) take(lines, blocks);
    if (!isEmpty) lines.push_back(line);
  }
  take(lines, blocks);
  return blocks;
}

std::string wrappedText(std::string_view text, std::size_t width, std::size_t indent, std::size_t column) {
  std::string wrapped;
  bool isFirst = true;
  std::istringstream stream{std::string(text)};
  for (std::string word; stream >> word; isFirst = false) {
    if (!isFirst && column + 1 + word.size() > width) {
      wrapped += "\n" + std::string(indent, ' ');
      column = indent;
    } else if (!isFirst) {
      wrapped += " ";
      ++column;
    }
    wrapped += word;
    column += word.size();
  }
  return wrapped;
}

std::string brokenCommand(const std::string& command, std::size_t width) {
  constexpr std::string_view kContinued = " \\\n      ";
  std::string lines;
  std::size_t begin = 0;
  for (std::size_t room = width; command.size() - begin > room; room = width - 6) {
    const std::size_t end = command.rfind(" --", begin + room - 2);  // with the blank and the backslash
    if (end == std::string::npos || end <= begin) break;
    lines += command.substr(begin, end - begin) + std::string(kContinued);
    begin = end + 1;
  }
  return lines + command.substr(begin);
}

std::string printedBlocks(const std::vector<TextBlock>& blocks, std::size_t width) {
  std::string text;
  for (const TextBlock& block : blocks) {
    // What a paragraph announces stands right below it.
    const bool isAnnounced = !text.empty() && text.ends_with(":\n") && block.kind != TextBlock::Kind::Paragraph;
    text += (text.empty() || isAnnounced ? "" : "\n") + printedBlock(block, width);
  }
  return text;
}

}  // namespace host
