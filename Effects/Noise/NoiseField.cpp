// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Noise/NoiseField.h"

#include "Effects/kernels/Between.h"
#include "Effects/kernels/Noise.h"

#include <algorithm>
#include <cmath>

namespace vorto::effects {

LatticePlaces::LatticePlaces(std::size_t pixels, double cell) : points(pixels), weights(pixels) {
  for (std::size_t i = 0; i < pixels; ++i) {
    const double place = static_cast<double>(i) / cell;
    const double point = std::floor(place);
    const double t = place - point;
    points[i] = static_cast<std::int32_t>(point);
    weights[i] = static_cast<float>(t * t * t * (t * (6 * t - 15) + 10));
  }
}

NoiseField::NoiseField(std::uint32_t seed, std::uint32_t channel, double scale, std::uint32_t octaves,
                       std::size_t width, std::size_t height)
    : values_(width) {
  const std::uint32_t channelKey = scrambled(scrambled(seed) + channel);
  double cell = scale;
  double strength = 1;
  double sum = 0;
  for (std::uint32_t i = 0; i < octaves && (i == 0 || cell >= 1); ++i) {
    octaves_.push_back({scrambled(channelKey + i), static_cast<float>(strength), {width, cell}, {height, cell}});
    const auto points = static_cast<std::size_t>(octaves_.back().columns.points.back()) + 2;
    octaves_.back().upper.resize(points);
    octaves_.back().lower.resize(points);
    between_.resize(std::max(between_.size(), points));
    sum += strength;
    cell /= 2;
    strength /= 2;
  }
  for (Octave& octave : octaves_) octave.strength = static_cast<float>(octave.strength / sum);
}

const std::vector<float>& NoiseField::row(std::size_t y) {
  std::fill(values_.begin(), values_.end(), 0.0F);
  for (Octave& octave : octaves_) addOctave(octave, y);
  return values_;
}

void NoiseField::addOctave(Octave& octave, std::size_t y) {
  const std::int32_t row = octave.rows.points[y];
  if (row != octave.row) {
    if (row == octave.row + 1) {
      std::swap(octave.upper, octave.lower);
    } else {
      latticeRow(octave.key, static_cast<std::uint32_t>(row), octave.upper.data(), octave.upper.size());
    }
    latticeRow(octave.key, static_cast<std::uint32_t>(row) + 1, octave.lower.data(), octave.lower.size());
    octave.row = row;
  }
  betweenRows(octave.upper.data(), octave.lower.data(), octave.rows.weights[y], between_.data(), octave.upper.size());
  addBetweenRow(between_.data(), octave.columns.points.data(), octave.columns.weights.data(), octave.strength,
                values_.data(), values_.size());
}

}  // namespace vorto::effects
