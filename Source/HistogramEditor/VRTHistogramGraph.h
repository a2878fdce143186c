// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/TCHistogram.h"

#include <cstdint>
#include <vector>

class NSBitmapImageRep;

// How counts become bars, and the grey ramp.

enum class VRTHistogramScale {
  Linear,       // bars as high as their counts
  Logarithmic,  // as the logarithm of their counts, for small counts beside a large one
};

// The counts of a channel: 1 red, 2 green, 3 blue, 4 alpha, any other all colors together.
const TCHistogram::Counts& VRTHistogramCountsOfChannel(const TCHistogram& histogram, std::int32_t channel);

// The heights of `width` columns in a graph of `height` rows, the largest count filling it. Counts between two bins are
// interpolated and rounded; without any counts all heights are 0.
std::vector<double> VRTHistogramHeights(const TCHistogram::Counts& counts, std::uint32_t width, std::uint32_t height,
                                        VRTHistogramScale scale);

// Paints dark bars that rise from the bottom on a light ground. A column is dark in the rows y, counted from the top,
// for which its height is above pixelsHigh() - y: a height of 2 is the least that shows. The colors are those of the
// picture, in light and dark interfaces alike.
void VRTPaintHistogram(NSBitmapImageRep& bitmap, const TCHistogram::Counts& counts, VRTHistogramScale scale);

// Paints black on the left to nearly white on the right: the level of column i is i / pixelsWide() x 255, rounded.
void VRTPaintGreyRamp(NSBitmapImageRep& bitmap);
