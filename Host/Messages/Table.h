// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace host {

// Columns as wide as their widest cell, two spaces apart, nothing at the end of lines.
class Table {
 public:
  enum Alignment { Left, Right };

  explicit Table(std::vector<Alignment> columns) : columns_(std::move(columns)) {}
  void addRow(std::vector<std::string> cells);  // one cell per column
  std::string text(const std::string& indent) const;

 private:
  std::vector<Alignment> columns_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace host
