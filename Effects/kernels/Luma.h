// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/PixelLayout.h"

#include <cstddef>

namespace vorto::effects {

// The lumas of `count` premultiplied pixels over black, 1 for white: 0.2126 R + 0.7152 G + 0.0722 B, the weights of
// ITU-R BT.709-6, item 3.2, in single precision. For RGBA8, ARGB8, RGBA16 and RGBAFloat.
template <class Layout>
void lumaRow(const typename Layout::Channel* in, float* out, std::size_t count);

// The definition.
template <class Layout>
void lumaRowScalar(const typename Layout::Channel* in, float* out, std::size_t count);

}  // namespace vorto::effects
