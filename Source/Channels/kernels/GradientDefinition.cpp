// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/kernels/GradientDefinition.h"

#include "Channels/VRTChannelGradientSample.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace vorto::kernels {
namespace {

// c0 (1 - s)^3 + 3 c1 (1 - s)^2 s + 3 c2 (1 - s) s^2 + c3 s^3. The powers are formed first, and every product and sum
// goes from left to right; the table kernels keep that order.
double bezier(const double (&c)[4], double s) {
  const double u = 1.0 - s;
  const double u2 = u * u;
  const double s2 = s * s;
  return c[0] * (u2 * u) + 3.0 * c[1] * u2 * s + 3.0 * c[2] * u * s2 + c[3] * (s2 * s);
}

bool withinTolerance(double value) {
  return value > -1e-7 && value < 1e-7;
}

std::uint8_t store(std::uint8_t*, float component) {
  return static_cast<std::uint8_t>(gradientInteger(component));
}
std::uint16_t store(std::uint16_t*, float component) {
  return static_cast<std::uint16_t>(gradientInteger(component));
}
float store(float*, float component) {
  return component;
}

template <class Stored>
void fillTable(GradientEntries color, GradientEntries opacity, Stored* out, std::uint32_t count) {
  const double step = gradientStep(count);
  for (std::uint32_t i = 0; i < count; ++i) {
    const double position = static_cast<double>(i) * step;
    double argb[4] = {0.0, 0.0, 0.0, 0.0};
    evaluateGradient(opacity, kOpacityComponents, position, argb);
    evaluateGradient(color, kColorComponents, position, argb + 1);
    for (std::size_t c = 0; c < 4; ++c) out[std::size_t{i} * 4 + c] = store(out, gradientFloat(argb[c]));
  }
}

}  // namespace

double bezierInterp(const double (&xControls)[4], const double (&yControls)[4], double abscissa) {
  const bool fromLeft = xControls[0] - abscissa <= 0.0;
  double s = fromLeft ? 0.0 : 1.0;
  double step = fromLeft ? 1.0 : -1.0;
  double candidate = s;
  for (int i = 0; i < 32; ++i) {
    step *= 0.5;
    candidate = s + step;
    const double f = bezier(xControls, candidate) - abscissa;
    if (f <= 0.0) s = candidate;
    if (withinTolerance(step) || withinTolerance(f)) break;
  }
  return bezier(yControls, candidate);
}

GradientSegment findSegment(GradientEntries entries, double position) {
  if (entries.empty()) return {nullptr, nullptr};
  // Entries at NaN come last and are never below a position; a position that is NaN is above no entry.
  const auto right = std::partition_point(entries.begin(), entries.end(),
                                          [position](const GradientEntry& entry) { return entry.position < position; });
  if (right == entries.begin()) return {&entries.front(), nullptr};
  if (right == entries.end()) return {&entries.back(), nullptr};
  return {&*(right - 1), &*right};
}

GradientEvaluation evaluateGradient(GradientEntries entries, std::span<const GradientComponent> components,
                                    double position, double* out) {
  const auto [left, right] = findSegment(entries, position);
  if (!left) return {nullptr, false};
  const std::int32_t kind = right ? left->sample.interpolation : VRTGradientConstant;
  if (kind != VRTGradientConstant && kind != VRTGradientLinear && kind != VRTGradientSmooth) return {left, false};

  const double t = right ? (position - left->position) / (right->position - left->position) : 0.0;
  for (std::size_t i = 0; i < components.size(); ++i) {
    const double a = left->sample.*components[i];
    if (kind == VRTGradientConstant) {
      out[i] = a;
      continue;
    }
    const double b = right->sample.*components[i];
    const double m = left->sample.middle;
    out[i] = kind == VRTGradientLinear ? a + t * (b - a) : bezierInterp({0.0, m, m, 1.0}, {a, a, b, b}, t);
  }
  return {left, true};
}

float gradientFloat(double component) {
  return std::isnan(component) ? std::numeric_limits<float>::quiet_NaN() : static_cast<float>(component);
}

std::int32_t gradientInteger(float component) {
  const double scaled = static_cast<double>(component) * 255.0;
  if (std::isnan(scaled)) return 0;
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(
      std::clamp(scaled, static_cast<double>(Limits::min()), static_cast<double>(Limits::max())));
}

double gradientStep(std::uint32_t count) {
  return 1.0 / static_cast<double>(count - 1U);
}

void gradientTableDefinition(GradientEntries color, GradientEntries opacity, std::uint8_t* out, std::uint32_t count) {
  fillTable(color, opacity, out, count);
}

void gradientTableDefinition(GradientEntries color, GradientEntries opacity, std::uint16_t* out, std::uint32_t count) {
  fillTable(color, opacity, out, count);
}

void gradientTableDefinition(GradientEntries color, GradientEntries opacity, float* out, std::uint32_t count) {
  fillTable(color, opacity, out, count);
}

}  // namespace vorto::kernels
