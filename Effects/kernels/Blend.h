// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

// Blend modes on rows of premultiplied pixels, color and alpha alike. Integer depths round once and stop at 1.0, which
// only a color above its alpha can reach.
namespace vorto::effects {

// Porter and Duff's "over": foreground + background * (1 - foreground alpha). At integer depths the product is what is
// rounded.
struct OverMode {};

// The separable blend mode "multiply" of the W3C's Compositing and Blending Level 1: F * B + F * (1 - background alpha)
// + B * (1 - foreground alpha).
struct MultiplyMode {};

// `count` pixels of RGBA8, ARGB8, RGBA16 or RGBAFloat (PixelLayout.h). The rows do not overlap.
template <class Mode, class Layout>
void blendRow(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
              typename Layout::Channel* out, std::size_t count);

// The definition.
template <class Mode, class Layout>
void blendRowScalar(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
                    typename Layout::Channel* out, std::size_t count);

}  // namespace vorto::effects
