// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

// How the benchmarks are named and shown. A benchmark named "table/row/column" becomes one cell; a table has as many
// rows and columns as its benchmarks name, in the order of their registration. The column "vorto" is the framework as
// it runs by default, and every other column is also given as a multiple of it.
inline std::string benchmarkName(const std::string& table, const std::string& row, const std::string& column) {
  return table + "/" + row + "/" + column;
}

// A benchmark that compares what it measures itself is named "table/row" and has these counters; its label names the
// best peer. The last two are missing where there is none.
struct Measures {
  const char* milliseconds = "milliseconds";
  const char* gigabytes = "GB/s";  // read and written
  const char* timesMemcpy = "times memcpy";
  const char* peerMilliseconds = "peer milliseconds";
  const char* timesPeer = "times peer";
};
inline constexpr Measures kMeasures;
