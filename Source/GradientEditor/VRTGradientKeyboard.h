// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <vector>

// How far one key press moves, as a fraction of the whole.
constexpr double VRTGradientKeyStep = 0.01;
constexpr double VRTGradientFineKeyStep = 0.001;
// How far from its source a copy is put.
constexpr double VRTGradientCopyStep = 0.05;

// Whether a sample may stand there: none other closer than half a fine step. Samples at equal positions would merge.
TARN_EXPORT bool VRTGradientPositionIsFree(double position, const std::vector<double>& others);

// Where a sample at `from` comes to stand when a key sends it to `target`, which is limited to 0 to 1. A place that
// is not free is passed by: the sample goes on in fine steps, and when that leads beyond the end, back to the last free
// place before. `from` when there is none.
TARN_EXPORT double VRTFreeGradientPosition(double from, double target, const std::vector<double>& others);
