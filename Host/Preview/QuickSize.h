// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Pixels/Resampling.h"

#include <algorithm>
#include <cmath>

namespace host {

// How inputs of quick pictures are scaled.
inline constexpr Scaling kQuickScaling{ScalingFilter::Box, ScalingFit::Stretch};

// The size in the shape of `full` that fits `view`, at most `full` itself.
inline PictureSize quickSize(const PictureSize& full, const PictureSize& view) {
  const double factor =
      std::min(static_cast<double>(view.width) / full.width, static_cast<double>(view.height) / full.height);
  if (factor >= 1) return full;
  const auto scaled = [&](std::uint32_t length) {
    return static_cast<std::uint32_t>(std::max(1.0, std::round(length * factor)));
  };
  return {scaled(full.width), scaled(full.height)};
}

}  // namespace host
