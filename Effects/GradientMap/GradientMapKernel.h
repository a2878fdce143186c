// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/GradientTable.h"

#include <cstddef>

// Replaces each pixel's color by the gradient's color at its luma.
//
// The luma is that of the straight color, with the weights of ITU-R BT.709-6, item 3.2: 0.2126 R + 0.7152 G + 0.0722 B.
// At integer depths it is rounded to the depth, which makes it the index of the table. The gradient's opacity
// multiplies the pixel's alpha. A pixel without alpha, or with one that is negative or NaN, becomes transparent black;
// a luma that is NaN takes the gradient's first color.
namespace vorto::effects {

// table: one entry per value of a channel, 256 or 65536; opaque: the same laid as opaque pixels.
template <class Layout>
void gradientMapRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                    const GradientEntry<typename Layout::Channel>* table, const LaidPixel<Layout>* opaque);

// table: gradientSteps + 1 entries; positions between entries are interpolated.
void gradientMapFloatRow(const float* in, float* out, std::size_t count, const GradientEntry<float>* table);

}  // namespace vorto::effects
