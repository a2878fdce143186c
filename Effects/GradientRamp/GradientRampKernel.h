// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/GradientTable.h"

#include <cstddef>

// `count` pixels of a gradient, premultiplied, at the positions start, start + step, ...; positions outside 0 to 1 take
// the ends.
namespace vorto::effects {

// The nearest of the table's gradientSteps pixels.
template <class Layout>
void gradientRampRow(double start, double step, typename Layout::Channel* out, std::size_t count,
                     const LaidPixel<Layout>* table);

// Between two of the table's gradientSteps + 1 entries.
void gradientRampFloatRow(double start, double step, float* out, std::size_t count, const GradientEntry<float>* table);

}  // namespace vorto::effects
