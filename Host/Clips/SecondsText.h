// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstdio>
#include <string>

namespace host {

// A duration in hundredths of a second at most, without its unit: "12.5", "60".
inline std::string secondsText(double seconds) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%.2f", seconds);
  std::string result = text.data();
  while (result.back() == '0') result.pop_back();
  if (result.back() == '.') result.pop_back();
  return result;
}

}  // namespace host
