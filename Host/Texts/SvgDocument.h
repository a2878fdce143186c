// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct SvgStop {
  std::size_t at = 0;                         // where its element begins
  std::map<std::string, std::string> values;  // "offset", "stop-color", "stop-opacity", "class"; style has won
};

struct SvgGradient {
  std::size_t at = 0;
  std::string id;
  std::string href;  // an id without "#", or empty
  std::string spreadMethod;
  std::string colorInterpolation;
  std::vector<SvgStop> stops;
};

// The gradients of a document in their order. Throws TextFault for what is no XML, declares entities, or has more stops
// than kMaximumStops in all.
std::vector<SvgGradient> svgGradients(std::string_view text);

}  // namespace host
