// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstddef>

// The color matrix of the W3C's Filter Effects Module Level 1 (feColorMatrix, type "matrix"): each component of the new
// straight color and alpha is a weighted sum of the old ones, which are 0 to 1, and a constant. Alpha is cut to 0 to 1;
// colors are too at integer depths, and are kept as they come at float. What has no alpha counts as transparent black.
namespace vorto::effects {

// For red, green, blue and alpha in turn: the weights of red, green, blue and alpha, and the constant.
using ColorMatrix = std::array<std::array<float, 5>, 4>;

// `count` pixels of RGBA8, ARGB8, RGBA16 or RGBAFloat (PixelLayout.h). The rows do not overlap.
template <class Layout>
void colorMatrixRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                    const ColorMatrix& matrix);

// The definition.
template <class Layout>
void colorMatrixRowScalar(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                          const ColorMatrix& matrix);

}  // namespace vorto::effects
