// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/GradientRamps.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace host {
namespace {

// What is left of 1/255 is for what lies between the places that are looked at.
constexpr double kTolerance = 0.9 / 255;
constexpr int kPlaces = 16;

bool isNear(const Rgba& a, const Rgba& b) {
  if (!(std::abs(a[3] - b[3]) <= kTolerance)) return false;
  if (a[3] == 0 || b[3] == 0) return true;
  return std::abs(a[0] - b[0]) <= kTolerance && std::abs(a[1] - b[1]) <= kTolerance &&
         std::abs(a[2] - b[2]) <= kTolerance;
}

bool fits(const Curve& curve, Blend blend, double from, double to) {
  const Rgba first = curve(from);
  const Rgba last = curve(to);
  for (int i = 1; i < kPlaces; ++i) {
    const double part = static_cast<double>(i) / kPlaces;
    if (!isNear(blend(first, last, part), curve(from + (to - from) * part))) return false;
  }
  return true;
}

// How far one ramp may reach from `from` on; at least one number further. `guess` is where to begin.
double reachOf(const Curve& curve, Blend blend, double from, double guess) {
  double step = std::min(guess, 1 - from);
  if (from + step >= 1 && fits(curve, blend, from, 1)) return 1;
  double tooFar = step;
  while (!fits(curve, blend, from, from + step)) {
    tooFar = step;
    step /= 2;
    if (from + step / 2 <= from) return std::nextafter(from, 2.0);
  }
  for (int i = 0; i < 5 && tooFar > step; ++i) {
    const double between = (step + tooFar) / 2;
    (fits(curve, blend, from, from + between) ? step : tooFar) = between;
  }
  return from + step;
}

}  // namespace

Rgba straightBlend(const Rgba& first, const Rgba& last, double t) {
  Rgba color;
  for (std::size_t i = 0; i < 4; ++i) color[i] = first[i] + t * (last[i] - first[i]);
  return color;
}

Rgba premultipliedBlend(const Rgba& first, const Rgba& last, double t) {
  if (first[3] == last[3]) return straightBlend(first, last, t);
  const double alpha = first[3] + t * (last[3] - first[3]);
  // The share of the last color; where one end has no alpha, the other one's color holds throughout.
  const double share = first[3] == 0 ? 1 : last[3] == 0 || alpha == 0 ? 0 : t * last[3] / alpha;
  Rgba color = straightBlend(first, last, share);
  color[3] = alpha;
  return color;
}

void appendRamp(Ramps& ramps, const Ramp& ramp) {
  if (ramp.end > ramp.begin) ramps.list.push_back(ramp);
}

bool appendCurve(Ramps& ramps, double begin, double end, const Curve& curve, Blend blend) {
  if (!(end > begin)) return true;
  double guess = 1;
  std::size_t count = 0;
  double from = 0;
  for (double left = begin; from < 1; ++count) {
    const double to = reachOf(curve, blend, from, guess);
    const double right = to >= 1 ? end : std::min(begin + (end - begin) * to, end);
    if (right > left) ramps.list.push_back({left, right, curve(from), curve(to)});
    if (ramps.list.size() > kMaximumStops) return false;
    guess = 2 * (to - from);
    from = to;
    left = right;
  }
  ramps.added += count - 1;
  return true;
}

}  // namespace host
