// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/GradientStops.h"

#include <functional>

namespace host {

using Rgba = std::array<double, 4>;  // straight alpha

// How a format goes from one color to the next.
using Blend = Rgba (*)(const Rgba& first, const Rgba& last, double t);
Rgba straightBlend(const Rgba& first, const Rgba& last, double t);
Rgba premultipliedBlend(const Rgba& first, const Rgba& last, double t);

// A stretch of a gradient over which a blend goes from one color to another.
struct Ramp {
  double begin = 0;
  double end = 0;
  Rgba first{};
  Rgba last{};
};

// Ramps from left to right, each beginning where the one before it ends; where their colors differ there, the gradient
// jumps.
struct Ramps {
  std::vector<Ramp> list;
  std::size_t added = 0;  // how many more than stretches were given, to stay near curves
};

// The position of a jump has the color behind it, or the one before it.
enum class JumpColor { Behind, Before };

// A stretch as a function of t, 0 to 1. It is to be continuous; kinks only cost ramps.
using Curve = std::function<Rgba(double t)>;

// Appends one ramp, or as many as it takes for no component to differ from the curve by more than 1/255; colors without
// alpha count for nothing. A stretch of no length is left out. False when there were more than kMaximumStops ramps.
bool appendCurve(Ramps& ramps, double begin, double end, const Curve& curve, Blend blend = straightBlend);
// The same for what the blend is, exactly.
void appendRamp(Ramps& ramps, const Ramp& ramp);

// A gradient that equals straight ramps, of which there must be one, exactly; before and behind them the first and the
// last color hold. A stop at which nothing changes is left out. Where it jumps, two stops stand one number apart, since
// of stops at one position a gradient knows only the last.
GradientStops stopsOfRamps(const std::vector<Ramp>& ramps, JumpColor jumps);

// From 0 to 1, within 1/255 of the gradient; a position at which it jumps has the color before it. Nothing, with the
// reason, when there is no telling: no color samples, an unknown interpolation, values beyond 0 to 1.
std::optional<Ramps> rampsOfStops(const GradientStops& stops, Blend blend, std::string* reason);

}  // namespace host
