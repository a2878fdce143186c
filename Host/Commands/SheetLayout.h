// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

namespace host {

// Where the pictures and captions of a contact sheet lie, in pixels.
class SheetLayout {
 public:
  static constexpr std::uint32_t PictureWidth = 480;
  static constexpr std::uint32_t PictureHeight = 320;

  struct Cell {
    std::size_t x;  // upper left corner of the picture's place
    std::size_t y;
    std::size_t captionX;  // centre of the caption
    std::size_t captionBaseline;
  };

  SheetLayout(std::size_t pictures, std::size_t columns);  // columns 0: as square as possible

  std::uint64_t width() const;
  std::uint64_t height() const;
  Cell cell(std::size_t index) const;

  // The size of a picture that is scaled down, in proportion, to its place; at least one pixel.
  static std::pair<std::uint32_t, std::uint32_t> fitted(std::uint32_t width, std::uint32_t height);

 private:
  std::size_t columns_;
  std::size_t rows_;
};

}  // namespace host
