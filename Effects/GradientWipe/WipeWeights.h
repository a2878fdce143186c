// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/GradientTable.h"

#include <cstddef>
#include <vector>

namespace vorto::effects {

// How much of the second image shows at each of a gradient's positions, of which the lumas are given.
//
// The gradient's luma (ITU-R BT.709 weights, opacity ignored) says when a place changes: black first, white last. An
// edge runs from 0 at time 0 to 1 + softness at time 1; a place of luma m shows (edge - m) / softness of the second
// image, within 0 and 1. Without softness it shows the second image once m is below the edge.
template <class Channel>
void wipeWeights(const std::vector<double>& lumas, double time, double softness,
                 std::vector<MixWeight<Channel>>& weights);

// The luma at each of the gradient's kGradientSteps positions.
std::vector<double> wipeLumas(const std::vector<GradientEntry<float>>& gradient);

}  // namespace vorto::effects
