// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/Bitmaps.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vorto::effects {

// The lumas of an image that is stretched to a frame, bilinear between the centers of its pixels. The image is of a
// layout that effects take and has at least one pixel.
class ShapeLumas {
 public:
  ShapeLumas(const VortoBitmap& shape, std::size_t width, std::size_t height);

  // A value for each pixel of the frame's row, which last until the next call. Fastest from the first row to the last.
  const std::vector<float>& row(std::size_t y);

 private:
  // Where the pixels of one direction lie between those of the image.
  struct Places {
    Places(std::size_t pixels, std::size_t stretched);
    std::vector<std::int32_t> before;
    std::vector<float> weights;  // of the next one
  };
  const std::vector<float>& lumasOf(std::size_t shapeRow);

  struct KeptRow {
    std::size_t row;
    std::vector<float> lumas;
  };

  const VortoBitmap& shape_;
  Places columns_;
  Places rows_;
  std::array<KeptRow, 2> kept_;
  std::vector<float> between_;
  std::vector<float> values_;
};

}  // namespace vorto::effects
