// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

namespace vorto::effects {

// The separable blend mode "multiply" of the W3C's Compositing and Blending Level 1, on `count` premultiplied pixels:
// F * B + F * (1 - background alpha) + B * (1 - foreground alpha), color and alpha alike. Integer depths round the sum
// once and stop at 1.0. For RGBA8, ARGB8, RGBA16 and RGBAFloat (PixelLayout.h). The rows do not overlap.
template <class Layout>
void multiplyRow(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
                 typename Layout::Channel* out, std::size_t count);

// The definition.
template <class Layout>
void multiplyRowScalar(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
                       typename Layout::Channel* out, std::size_t count);

}  // namespace vorto::effects
