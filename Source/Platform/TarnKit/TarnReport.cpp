// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/TarnReport.h"

#include <cstdio>
#include <set>

void TarnReportOnce(const std::string& text) {
  static auto& reported = *new std::set<std::string>;
  if (reported.insert(text).second) std::fprintf(stderr, "%s\n", text.c_str());
}
