// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

namespace vorto::effects {

// Porter and Duff's "over" on `count` premultiplied pixels, color and alpha alike: foreground + background * (1 -
// foreground alpha). Integer depths round the product and stop at 1.0, which only a color above its alpha can reach.
// For RGBA8, ARGB8, RGBA16 and RGBAFloat (PixelLayout.h). The rows do not overlap.
template <class Layout>
void overRow(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
             typename Layout::Channel* out, std::size_t count);

// The definition.
template <class Layout>
void overRowScalar(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
                   typename Layout::Channel* out, std::size_t count);

}  // namespace vorto::effects
