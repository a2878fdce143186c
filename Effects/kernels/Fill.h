// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/GradientTable.h"

#include <cstddef>

// Porter and Duff's "in" of one color and an image: the premultiplied color times each pixel's alpha, rounded to the
// nearest at integer depths. What color the pixels have does not matter.
namespace vorto::effects {

// `count` pixels of RGBA8, ARGB8, RGBA16 or RGBAFloat (PixelLayout.h), the color in the same layout. The rows do not
// overlap.
template <class Layout>
void fillRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
             const LaidPixel<Layout>& color);

// The definition.
template <class Layout>
void fillRowScalar(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                   const LaidPixel<Layout>& color);

}  // namespace vorto::effects
