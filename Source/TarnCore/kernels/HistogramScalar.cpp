// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Histogram.h"

#include <cmath>
#include <cstring>

namespace vorto::kernels {

namespace {

int roundedBin(double x) {
  const double bin = std::floor(x + 0.5 + 1e-7);
  if (!(bin >= 0)) return 0;
  return bin >= 255 ? 254 : static_cast<int>(bin);
}

template <class Channel>
void countRows(HistogramTables& tables, const HistogramRows& rows) {
  for (std::size_t y = 0; y < rows.height; ++y) {
    const std::uint8_t* in = rows.pixels + y * rows.bytesPerRow;
    for (std::size_t x = 0; x < rows.width; ++x, in += 4 * sizeof(Channel)) {
      Channel pixel[4];
      std::memcpy(pixel, in, sizeof pixel);
      for (int c = 0; c < 4; ++c) ++tables.counts[c][histogramBin(pixel[c])];
    }
  }
}

}  // namespace

int histogramBin(std::uint8_t value) {
  return roundedBin(value);
}

int histogramBin(std::uint16_t value) {
  const float x = static_cast<float>(value) / 257.0f;
  return roundedBin(static_cast<double>(x));
}

int histogramBin(float value) {
  const float x = value / 0.003921569f;
  return roundedBin(static_cast<double>(x));
}

void countHistogramScalar(HistogramTables& tables, const HistogramRows& rows) {
  switch (rows.depth) {
    case HistogramDepth::Bytes:
      return countRows<std::uint8_t>(tables, rows);
    case HistogramDepth::Words:
      return countRows<std::uint16_t>(tables, rows);
    case HistogramDepth::Floats:
      return countRows<float>(tables, rows);
  }
}

}  // namespace vorto::kernels
