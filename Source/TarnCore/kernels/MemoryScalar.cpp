// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Memory.h"

#include <algorithm>
#include <cstring>

namespace vorto::kernels {

void copyBytesScalar(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes) {
  if (bytes > 0) std::memmove(destination, source, bytes);
}

void swapBytesScalar(std::uint8_t* first, std::uint8_t* second, std::size_t bytes) {
  std::swap_ranges(first, first + bytes, second);
}

}  // namespace vorto::kernels
