// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

// The complement of each pixel's straight color: 1 - C, which is alpha - c of the premultiplied c. Alpha stays. At
// integer depths it is exact, and a color above its alpha gives 0.
namespace vorto::effects {

// `count` pixels of RGBA8, ARGB8, RGBA16 or RGBAFloat (PixelLayout.h). The rows do not overlap.
template <class Layout>
void invertRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count);

// The definition.
template <class Layout>
void invertRowScalar(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count);

}  // namespace vorto::effects
