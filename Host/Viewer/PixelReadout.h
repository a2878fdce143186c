// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Preview/PreviewPicture.h"

#include <array>
#include <cstdint>
#include <optional>

namespace host {

// The samples of a pixel as people read them: integers are 0 to their maximum, others floats.
struct PixelValues {
  int count = 0;  // 1 gray, 2 gray and alpha, 3 colors, 4 colors and alpha
  std::array<double, 4> samples{};
  Depth depth = Depth::Bits8;
  AlphaKind alpha = AlphaKind::None;  // whether alpha is in the colors

  // In the same order: as parts of full, gray in all three colors; alpha is 1 where there is none.
  std::array<double, 4> asParts() const;
  // A float below 0, above 1, or no number.
  bool isOutside() const;
};

struct PixelReadout {
  std::uint32_t x = 0;  // of the full result
  std::uint32_t y = 0;
  // In the file's own values, with its alpha as it is there, where they are known; else what the effect took in.
  std::optional<PixelValues> before;
  // What the effect made of it, in the depth that it works in, without premultiplication, so that both can be compared.
  std::optional<PixelValues> after;
  bool isApproximate = false;  // taken from a picture that is smaller than the full one
};

// The pixel of the full result at that place; nothing outside of it. Inputs of another size lie under the whole of the
// result.
std::optional<PixelReadout> readPixel(const PreviewPicture& picture, std::int64_t x, std::int64_t y);

}  // namespace host
