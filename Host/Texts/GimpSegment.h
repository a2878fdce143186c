// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/GradientRamps.h"

namespace host {

// One segment of a .ggr file.
struct GimpSegment {
  enum Blending { Linear, Curved, Sinusoidal, SphereIncreasing, SphereDecreasing, Step };
  enum Coloring { Rgb, HsvCounterClockwise, HsvClockwise };

  double left = 0;
  double middle = 0.5;
  double right = 1;
  Rgba leftColor{};
  Rgba rightColor{};
  Blending blending = Linear;
  Coloring coloring = Rgb;

  // The share of the right color at t, 0 to 1 of the segment.
  double shareAt(double t) const;
  Rgba colorOfShare(double share) const;
};

// False when there were too many ramps.
bool appendSegment(Ramps& ramps, const GimpSegment& segment);

}  // namespace host
