// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTGradientLookup.h"

#include <cstdint>
#include <span>

// What evaluating a gradient means, one position at a time and formula by formula. The table kernels (GradientTable.h)
// are held to this bit for bit.
namespace vorto::kernels {

using GradientEntry = VRTGradientLookup::Entry;
using GradientEntries = std::span<const GradientEntry>;  // by ascending position, as VRTGradientLookup holds them

using GradientComponent = double VRTGradientLookupSample::*;
inline constexpr GradientComponent kColorComponents[] = {&VRTGradientLookupSample::red, &VRTGradientLookupSample::green,
                                                         &VRTGradientLookupSample::blue};
inline constexpr GradientComponent kOpacityComponents[] = {&VRTGradientLookupSample::alpha};

// The y of the cubic Bezier curve with these control values where its x reaches the abscissa, found by halving steps
// from one end: at most 32, until the step or the distance in x lies within 1e-7 of 0. The result belongs to the last
// point tried, which is not always the last one kept.
double bezierInterp(const double (&xControls)[4], const double (&yControls)[4], double abscissa);

// The entries on both sides of a position. Without a right one the left one's value holds: the position lies before the
// first entry or after the last one. Both are null when there are no entries.
struct GradientSegment {
  const GradientEntry* left;
  const GradientEntry* right;
};
GradientSegment findSegment(GradientEntries entries, double position);

struct GradientEvaluation {
  const GradientEntry* entry;  // whose segment was used; null when there are no entries
  bool written;                // false when there are no entries or the interpolation kind is unknown
};
// Writes one double per component.
GradientEvaluation evaluateGradient(GradientEntries entries, std::span<const GradientComponent> components,
                                    double position, double* out);

// How a component is stored: as a float, of which every NaN is the same quiet one; and as 255 times that float,
// truncated toward zero, the nearest integer of 32 bits when it is beyond them, 0 for NaN.
float gradientFloat(double component);
std::int32_t gradientInteger(float component);

// Step between the positions of a table; infinite for one entry.
double gradientStep(std::uint32_t count);

// Tables of `count` entries of alpha, red, green and blue; components without a value are 0.
void gradientTableDefinition(GradientEntries color, GradientEntries opacity, std::uint8_t* out, std::uint32_t count);
void gradientTableDefinition(GradientEntries color, GradientEntries opacity, std::uint16_t* out, std::uint32_t count);
void gradientTableDefinition(GradientEntries color, GradientEntries opacity, float* out, std::uint32_t count);

}  // namespace vorto::kernels
