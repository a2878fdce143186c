// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace host::tiff {

struct Method {
  std::uint16_t compression = 1;
  std::uint16_t predictor = 1;  // what is compressed are differences of neighbors
  int level = -1;               // -1: the method's own default
};

// False for a compression or a level that there is none of.
bool methodOf(const WriteRequest& request, Method* method, std::string* reason);

// Rows as they are compressed together.
struct Strip {
  std::uint32_t width = 0;
  std::uint32_t rows = 0;
  std::uint16_t samplesPerPixel = 1;
  std::uint16_t bitsPerSample = 8;
  bool isFloat = false;
};

// False, with the cause, when the library fails. `samples` are changed.
bool encodeStrip(const Strip& strip, const Method& method, std::span<std::uint8_t> samples,
                 std::vector<std::uint8_t>* stored, std::string* reason);

}  // namespace host::tiff
