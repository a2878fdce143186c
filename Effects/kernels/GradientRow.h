// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/GradientTable.h"

#include <cstddef>

namespace vorto::effects {

// `count` pixels of a gradient, premultiplied, at positions of which those below 0 or above 1 take the ends, NaN the
// first. At integer depths the nearest of kGradientSteps pixels.
template <class Layout>
void gradientRow(const float* positions, typename Layout::Channel* out, std::size_t count,
                 const LaidPixel<Layout>* table);

// Between two of kGradientSteps + 1 pixels that are not premultiplied (GradientMap.h's mapTable()).
void gradientFloatRow(const float* positions, float* out, std::size_t count, const LaidPixel<RGBAFloat>* table);

// The nearest of kGradientSteps values at each of `count` positions; Value is std::uint32_t or float.
template <class Value>
void valueRow(const float* positions, Value* out, std::size_t count, const Value* values);

// The definitions.
template <class Layout>
void gradientRowScalar(const float* positions, typename Layout::Channel* out, std::size_t count,
                       const LaidPixel<Layout>* table);
template <class Value>
void valueRowScalar(const float* positions, Value* out, std::size_t count, const Value* values);
void gradientFloatRowScalar(const float* positions, float* out, std::size_t count, const LaidPixel<RGBAFloat>* table);

}  // namespace vorto::effects
