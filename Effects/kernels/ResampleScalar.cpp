// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/FloatPixels.h"
#include "Effects/kernels/Resample.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vorto::effects {
namespace {

constexpr double kLanczosReach = 3;

double lanczos(double t) {
  if (t == 0) return 1;
  if (std::abs(t) >= kLanczosReach) return 0;
  const double angle = std::numbers::pi * t;
  return kLanczosReach * std::sin(angle) * std::sin(angle / kLanczosReach) / (angle * angle);
}

template <class Channel>
float channelAt(const ResampleSource<Channel>& in, std::int64_t x, std::int64_t y, std::size_t c) {
  const bool isInside = x >= 0 && x < in.width && y >= 0 && y < in.height;
  return isInside ? static_cast<float>(in.at(x, y)[c]) : 0.0F;
}

template <class Layout>
void storePixel(const float (&made)[4], typename Layout::Channel* out) {
  for (int c = 0; c < 4; ++c) out[c] = storedChannel<typename Layout::Channel>(made[c], made[Layout::kAlpha]);
}

// Each column's sum goes down its rows; the columns then fold up in halves.
template <class Layout, std::size_t columns, std::size_t rows, std::int64_t before>
void resamplePixel(const ResampleSource<typename Layout::Channel>& in, const ResampleKernel& kernel, double x, double y,
                   typename Layout::Channel* out) {
  const ResampleStart startX(x, before), startY(y, before);
  const ResampleWeights<columns> weightsX(kernel, startX.phase);
  const ResampleWeights<columns> weightsY(kernel, startY.phase);
  float made[4];
  for (std::size_t c = 0; c < 4; ++c) {
    float sums[columns];
    for (std::size_t i = 0; i < columns; ++i) {
      const std::int64_t column = startX.first + static_cast<std::int64_t>(i);
      float sum = weightsY.values[0] * channelAt(in, column, startY.first, c);
      for (std::size_t j = 1; j < rows; ++j) {
        sum = sum + weightsY.values[j] * channelAt(in, column, startY.first + static_cast<std::int64_t>(j), c);
      }
      sums[i] = i < rows ? sum * weightsX.values[i] : 0.0F;  // Lanczos has columns that only fill vectors
    }
    for (std::size_t half = columns / 2; half > 0; half /= 2) {
      for (std::size_t i = 0; i < half; ++i) sums[i] = sums[i] + sums[i + half];
    }
    made[c] = sums[0];
  }
  storePixel<Layout>(made, out);
}

template <class Layout>
void widenedPixel(const ResampleSource<typename Layout::Channel>& in, const ResampleKernel& kernel, double x, double y,
                  typename Layout::Channel* out) {
  std::int64_t firstX = 0, firstY = 0;
  std::vector<float> weightsX, weightsY;
  kernel.weightsAt(x, kernel.scaleX(), firstX, weightsX);
  kernel.weightsAt(y, kernel.scaleY(), firstY, weightsY);
  const auto beginX = std::max<std::int64_t>(firstX, 0), beginY = std::max<std::int64_t>(firstY, 0);
  const auto endX = std::min(firstX + static_cast<std::int64_t>(weightsX.size()), in.width);
  const auto endY = std::min(firstY + static_cast<std::int64_t>(weightsY.size()), in.height);
  float made[4] = {};
  for (std::int64_t row = beginY; row < endY; ++row) {
    float sums[4] = {};
    for (std::int64_t column = beginX; column < endX; ++column) {
      const auto* const pixel = in.at(column, row);
      const float weight = weightsX[static_cast<std::size_t>(column - firstX)];
      for (int c = 0; c < 4; ++c) sums[c] = sums[c] + weight * static_cast<float>(pixel[c]);
    }
    const float weight = weightsY[static_cast<std::size_t>(row - firstY)];
    for (int c = 0; c < 4; ++c) made[c] = made[c] + weight * sums[c];
  }
  storePixel<Layout>(made, out);
}

}  // namespace

ResampleKernel::ResampleKernel(Kind kind, double scaleX, double scaleY)
    : kind_(kind), scaleX_(std::min(scaleX, 1.0)), scaleY_(std::min(scaleY, 1.0)) {
  if (kind == Kind::Linear) return;
  phases_.resize((kPhases + 2) * kTaps);
  for (std::size_t p = 0; p <= kPhases + 1; ++p) {
    const double phase = std::min(static_cast<double>(p) / kPhases, 1.0);
    double weights[6], sum = 0;
    for (int i = 0; i < 6; ++i) sum += weights[i] = lanczos(i - 2 - phase);
    for (std::size_t i = 0; i < 6; ++i) phases_[p * kTaps + i] = static_cast<float>(weights[i] / sum);
  }
  for (std::size_t i = 0; i <= 3 * kPhases + 1; ++i) values_.push_back(lanczos(static_cast<double>(i) / kPhases));
}

double ResampleKernel::reachX() const {
  return reach() / scaleX_;
}

double ResampleKernel::reachY() const {
  return reach() / scaleY_;
}

double ResampleKernel::valueAt(double t) const {
  const double distance = std::abs(t);
  if (!(distance < reach())) return 0;
  if (kind_ == Kind::Linear) return 1 - distance;
  const double place = distance * kPhases;
  const auto index = static_cast<std::size_t>(place);
  const double part = place - static_cast<double>(index);
  return values_[index] + (values_[index + 1] - values_[index]) * part;
}

void ResampleKernel::weightsAt(double place, double scale, std::int64_t& first, std::vector<float>& weights) const {
  const double reached = reach() / scale;
  first = floorOf(place - reached - 0.5) + 1;
  const auto count = static_cast<std::size_t>(floorOf(place + reached - 0.5) - first + 1);
  weights.resize(count);
  double sum = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const double center = static_cast<double>(first + static_cast<std::int64_t>(i)) + 0.5;
    const double value = valueAt((center - place) * scale);
    weights[i] = static_cast<float>(value);
    sum += value;
  }
  const auto share = static_cast<float>(1 / sum);
  for (float& weight : weights) weight *= share;
}

template <class Layout>
void resampleRowScalar(const ResampleSource<typename Layout::Channel>& in, const ResampleKernel& kernel,
                       const ResamplePlaces& places, std::size_t first, std::size_t end,
                       typename Layout::Channel* out) {
  for (std::size_t i = first; i < end; ++i) {
    const double x = places.xOf(i), y = places.yOf(i);
    if (kernel.isWidened()) {
      widenedPixel<Layout>(in, kernel, x, y, out + 4 * i);
    } else if (kernel.kind() == ResampleKernel::Kind::Linear) {
      resamplePixel<Layout, 2, 2, 0>(in, kernel, x, y, out + 4 * i);
    } else {
      resamplePixel<Layout, 8, 6, 2>(in, kernel, x, y, out + 4 * i);
    }
  }
}

template <class Channel>
void nearestRow(const ResampleSource<Channel>& in, const ResamplePlaces& places, std::size_t first, std::size_t end,
                Channel* out) {
  for (std::size_t i = first; i < end; ++i) {
    const std::int64_t x = floorOf(places.xOf(i)), y = floorOf(places.yOf(i));
    if (x >= 0 && x < in.width && y >= 0 && y < in.height) {
      std::copy_n(in.at(x, y), 4, out + 4 * i);
    } else {
      std::fill_n(out + 4 * i, 4, Channel{0});
    }
  }
}

using Byte = std::uint8_t;
using Word = std::uint16_t;
template void resampleRowScalar<RGBA8>(const ResampleSource<Byte>&, const ResampleKernel&, const ResamplePlaces&,
                                       std::size_t, std::size_t, Byte*);
template void resampleRowScalar<ARGB8>(const ResampleSource<Byte>&, const ResampleKernel&, const ResamplePlaces&,
                                       std::size_t, std::size_t, Byte*);
template void resampleRowScalar<RGBA16>(const ResampleSource<Word>&, const ResampleKernel&, const ResamplePlaces&,
                                        std::size_t, std::size_t, Word*);
template void resampleRowScalar<RGBAFloat>(const ResampleSource<float>&, const ResampleKernel&, const ResamplePlaces&,
                                           std::size_t, std::size_t, float*);
template void nearestRow(const ResampleSource<Byte>&, const ResamplePlaces&, std::size_t, std::size_t, Byte*);
template void nearestRow(const ResampleSource<Word>&, const ResamplePlaces&, std::size_t, std::size_t, Word*);
template void nearestRow(const ResampleSource<float>&, const ResamplePlaces&, std::size_t, std::size_t, float*);

}  // namespace vorto::effects
