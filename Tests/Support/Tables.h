// SPDX-License-Identifier: BSD-3-Clause
#pragma once

using Row = std::vector<std::string>;

// The rows of a table of text in the folder of the tests: one a line, cells between " | ", with \n, \t, \\ and \xHH in
// them. Lines that begin with "# " are comments.
inline std::vector<Row> rowsOf(const std::string& table) {
  std::ifstream file(VORTO_TEST_TABLES "/" + table);
  std::vector<Row> rows;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line.starts_with("# ")) continue;
    Row row(1);
    for (std::size_t i = 0; i < line.size(); ++i) {
      const char next = line[i] == '\\' ? line[++i] : '\0';
      if (next == 'x') {
        row.back() += static_cast<char>(std::stoi(line.substr(i + 1, 2), nullptr, 16));
        i += 2;
      } else if (next == '\0' && line.compare(i, 3, " | ") == 0) {
        row.emplace_back();
        i += 2;
      } else {
        row.back() += next == 'n' ? '\n' : next == 't' ? '\t' : line[i];
      }
    }
    rows.push_back(row);
  }
  EXPECT_GT(rows.size(), 3u) << table;
  return rows;
}
