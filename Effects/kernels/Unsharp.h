// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

// Unsharp masking of straight color: C + amount (C - B) where the color C differs from the blurred one B by the
// threshold or more, in the channel itself. Of premultiplied pixels, c + amount (c - b alpha / blurred alpha), so that
// transparency next to a color does not count as darkness. Alpha stays. Integer colors stop at 0 and at alpha. A pixel
// without alpha, and one around which there is none, stays, but for integer colors above alpha.
namespace vorto::effects {

struct UnsharpSettings {
  float amount;
  float threshold;  // 0 to 1
};

// `count` pixels of RGBA8, ARGB8, RGBA16 or RGBAFloat (PixelLayout.h), and the blurred ones as floats in the same units
// and order. The rows do not overlap.
template <class Layout>
void unsharpRow(const typename Layout::Channel* in, const float* blurred, typename Layout::Channel* out,
                std::size_t count, UnsharpSettings settings);

// The definition.
template <class Layout>
void unsharpRowScalar(const typename Layout::Channel* in, const float* blurred, typename Layout::Channel* out,
                      std::size_t count, UnsharpSettings settings);

}  // namespace vorto::effects
