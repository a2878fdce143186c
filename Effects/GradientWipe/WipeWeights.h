// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/GradientTable.h"

#include <cstddef>
#include <vector>

namespace vorto::effects {

// How much of the second image shows where the gradient is at each of its gradientSteps positions.
//
// The gradient's luma (ITU-R BT.709 weights, opacity ignored) says when a place changes: black first, white last. An
// edge runs from 0 at time 0 to 1 + softness at time 1; a place of luma m shows (edge - m) / softness of the second
// image, within 0 and 1. Without softness it shows the second image once m is below the edge.
template <class Channel>
std::vector<MixWeight<Channel>> wipeWeights(const std::vector<GradientEntry<float>>& gradient, double time,
                                            double softness);

// The weights at the positions start, start + step, ... of a row; positions outside 0 to 1 take the ends.
template <class Weight>
void wipeRow(double start, double step, const Weight* weights, Weight* out, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const double position = start + static_cast<double>(i) * step;
    const double clamped = position > 0 ? std::min(position, 1.0) : 0.0;
    out[i] = weights[static_cast<int>(clamped * (kGradientSteps - 1) + 0.5)];
  }
}

}  // namespace vorto::effects
