// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Levels/LevelsStage.h"

#include <cstddef>

namespace vorto::effects {

struct LevelsCurves {
  LevelsCurve red, green, blue;
  LevelsStage alpha;
};

// Puts the straight color of each pixel, red, green, blue, alpha, and its alpha, through their curves.
//
// Premultiplication is taken off and put back with the new alpha. Alpha keeps to 0 to 1 as it does at integer depths,
// unless its levels are neutral, which change nothing. Where alpha is not above 0 there is nothing to take off: the
// color is taken as it stands, and stays when the new alpha is not above 0 either. The rows do not overlap.
void levelsFloatRow(const float* in, float* out, std::size_t count, const LevelsCurves& curves);

}  // namespace vorto::effects
