// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/TCHistogram.h"

#include <QString>
#include <cstdint>

// What a histogram says at one level.

// The last bin that counts are put into: bin 255 stays empty.
constexpr std::size_t VRTHistogramLastBin = TCHistogram::Bins - 2;

struct VRTHistogramReadout {
  std::size_t bin = 0;
  std::uint64_t count = 0;
  // Shares of all counts of the channel, 0 to 1; 0 where nothing is counted.
  double share = 0;
  double black = 0;  // of the first bin
  double white = 0;  // of the last one
};

// Bins beyond the last count as the last.
VRTHistogramReadout VRTHistogramReadoutAt(const TCHistogram::Counts& counts, std::size_t bin);

// The bin that stands at a column of a graph; those beyond the graph give the first and the last.
std::size_t VRTHistogramBinOfColumn(double column, double width);
// Where the middle of a bin stands in a graph of that width.
double VRTHistogramColumnOfBin(std::size_t bin, double width);

// For people, in their language and notation. The levels that the bin has in images of that depth, 8 or 16 bits, and as
// parts of white: "128 (0.502)"; of floats (32 bits) the latter alone.
QString VRTHistogramLevelText(std::size_t bin, std::uint32_t bitsPerChannel);
QString VRTHistogramCountText(const VRTHistogramReadout& readout);  // "1,234 = 0.84 %"
QString VRTHistogramBlackText(const VRTHistogramReadout& readout);  // "Black 0.2 %"
QString VRTHistogramWhiteText(const VRTHistogramReadout& readout);
// All of them on one line.
QString VRTHistogramReadoutText(const VRTHistogramReadout& readout, std::uint32_t bitsPerChannel);
// A share as a percentage; one that is more than nothing never reads as nothing.
QString VRTHistogramPercentText(double share);
