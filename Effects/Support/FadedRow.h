// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vorto::effects {

// Rows of pixels, scaled in color and alpha. At integer depths the result is rounded once.
class FadedRow {
 public:
  // Rows of `count` pixels of a layout that effects take; opacities above 0, of which those from 1 on change nothing.
  FadedRow(std::uint32_t formatCode, std::size_t count, double opacity);

  // The row's pixels, which stay as they are until the next call: the given ones where nothing changes.
  const void* of(const void* row);

 private:
  std::uint32_t formatCode_;
  std::size_t count_;
  double opacity_;
  std::vector<std::uint8_t> nothing_;
  std::vector<std::uint8_t> faded_;
};

}  // namespace vorto::effects
