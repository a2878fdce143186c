// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/Bitmaps.h"
#include "Effects/kernels/GaussianLines.h"

#include <functional>

namespace vorto::effects {

inline constexpr double kLargestSigma = 100;

// Whether a blur with this sigma, in pixels, leaves every image as it is: 0, less, or so little that no neighbor
// counts.
bool isNoBlur(double sigma);

// A part of a blurred image: row r, from pixel x of row y + r on, is at `lines + r * lanes`, four floats a pixel in the
// units and the order of the image's channels; nothing may be off by kGaussianFloor (GaussianLines.h).
struct BlurredBlock {
  const float* lines;
  std::size_t lanes;
  std::size_t x, y, pixels, rows;
};

// Blurs an image of at least one pixel and passes on the result block by block, each pixel once. Sigma stops at
// kLargestSigma and must not be NaN. Needs some kilobytes, or for sigmas above kLargestDirectSigma 16 bytes a pixel,
// while it works; false, with the reason, when there is no memory for them.
bool gaussianBlur(const VortoBitmap& in, double sigma, GaussianEdges edges,
                  const std::function<void(const BlurredBlock&)>& take, std::string* reason);

}  // namespace vorto::effects
