// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Levels/LevelsStage.h"

#include <cstddef>

// Puts the straight color of each pixel, and its alpha, through their curves.
//
// Premultiplication is taken off and put back with the new alpha. Where alpha is 0 there is nothing to take off: the
// color is taken as it stands, and stays when the new alpha is 0 as well (or negative). Opacity multiplies, so levels
// of its own keep it in 0 to 1 at every depth; without them floats keep the alpha that they have.
namespace vorto::effects {

// One value per value of a channel.
template <class Channel>
struct LevelsTables {
  const Channel* red;
  const Channel* green;
  const Channel* blue;
  const Channel* alpha;
};

struct LevelsCurves {
  LevelsCurve<float> red;
  LevelsCurve<float> green;
  LevelsCurve<float> blue;
  LevelsStage<float> alpha;
};

template <class Layout>
void levelsRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
               const LevelsTables<typename Layout::Channel>& tables);

void levelsFloatRow(const float* in, float* out, std::size_t count, const LevelsCurves& curves);

}  // namespace vorto::effects
