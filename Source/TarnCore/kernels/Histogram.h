// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

// Counts of the values in images of four channels.
namespace vorto::kernels {

enum class HistogramDepth { Bytes, Words, Floats };
constexpr std::size_t histogramPixelBytes(HistogramDepth depth) {
  return depth == HistogramDepth::Bytes ? 4 : depth == HistogramDepth::Words ? 8 : 16;
}

struct HistogramRows {
  HistogramDepth depth = HistogramDepth::Bytes;
  const std::uint8_t* pixels = nullptr;
  std::size_t width = 0;  // fewer than 2 to the 32 pixels in all
  std::size_t height = 0;
  std::size_t bytesPerRow = 0;
};

// One table for each channel, in the order of memory.
struct HistogramTables {
  std::uint32_t counts[4][256];
};

// The bin of one value, by the rule of TCHistogram.
int histogramBin(std::uint8_t value);
int histogramBin(std::uint16_t value);
int histogramBin(float value);

// Adds the pixels' bins to the tables.
void countHistogram(HistogramTables& tables, const HistogramRows& rows);
void countHistogramScalar(HistogramTables& tables, const HistogramRows& rows);

}  // namespace vorto::kernels
