// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/Bitmaps.h"
#include "Effects/kernels/GaussianLines.h"

namespace vorto::effects {

inline constexpr double kLargestSigma = 100;

// Whether a blur with this sigma, in pixels, leaves every image as it is: 0, less, or so little that no neighbor
// counts.
bool isNoBlur(double sigma);

// Blurs an image of at least one pixel into `out`, which has its size: a bitmap of its layout, or one of float RGBA,
// which gets the blurred channels in the units and the order of `in` (0 to 255 in alpha, red, green, blue of an ARGB8
// image). Sigma stops at kLargestSigma and must not be NaN. The images are different ones. Needs 16 bytes a pixel while
// it works; false, with the reason, when there is no memory for them.
bool gaussianBlur(const VortoBitmap& in, VortoBitmap& out, double sigma, GaussianEdges edges, std::string* reason);

}  // namespace vorto::effects
