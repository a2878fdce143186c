// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// The five ways in which PNG stores a row: each byte less what its neighbors let expect, modulo 256.
namespace host {

enum class PngFilter : std::uint8_t { None, Sub, Up, Average, Paeth };
inline constexpr std::size_t kPngFilterCount = 5;

// Restores a row of `size` bytes from its filtered form. `above` is the restored row before it, zeros for the first;
// `row` may be `filtered`, and is not `above`. The bytes of a pixel are 1, 2, 3, 4, 6 or 8. False for a filter that
// does not exist.
bool unfilterPngRow(std::uint8_t filter, const std::uint8_t* filtered, const std::uint8_t* above, std::size_t size,
                    std::size_t pixelBytes, std::uint8_t* row);

// Filters rows in the way that leaves the least behind.
class PngRowFilter {
 public:
  PngRowFilter(std::size_t rowSize, std::size_t pixelBytes);

  // Writes the filter's number and the row's filtered bytes: 1 + rowSize. Rows come in order from the top.
  void filter(const std::uint8_t* row, std::uint8_t* filtered);

 private:
  std::size_t size_;
  std::size_t pixelBytes_;
  std::array<std::vector<std::uint8_t>, 2> rows_;        // this and the one above, behind a pixel of zeros
  std::array<std::vector<std::uint8_t>, 2> candidates_;  // the best so far, and the next
};

}  // namespace host
