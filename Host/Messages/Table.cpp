// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/Table.h"

#include "Host/Messages/Utf8.h"

#include <algorithm>

namespace host {

void Table::addRow(std::vector<std::string> cells) {
  cells.resize(columns_.size());
  for (std::string& cell : cells) cell = printable(cell);
  rows_.push_back(std::move(cells));
}

std::string Table::text(const std::string& indent) const {
  std::vector<std::size_t> widths(columns_.size());
  for (const auto& row : rows_) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], utf8Length(row[i]));
  }
  std::string text;
  for (const auto& row : rows_) {
    std::string line = indent;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string padding(widths[i] - utf8Length(row[i]), ' ');
      if (i > 0) line += "  ";
      line += columns_[i] == Left ? row[i] + padding : padding + row[i];
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + '\n';
  }
  return text;
}

}  // namespace host
