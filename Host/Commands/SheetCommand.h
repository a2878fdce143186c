// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace host {

struct SheetOptions {
  std::vector<std::string> files;
  std::string output;
  unsigned columns = 0;             // 0: as square a sheet as the number of pictures allows
  std::vector<std::string> labels;  // one per picture; empty: the files' names without their extension
};

// Lays pictures out in rows with a caption below each, on dark gray. Pictures are scaled down to fit, never up.
void runSheet(const SheetOptions& options);

}  // namespace host
