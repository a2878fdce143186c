// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vorto::effects {

// Where the pixels of a row, or of a column, lie between the points of a lattice.
struct LatticePlaces {
  // `cell` pixels from point to point, at least 1; the first pixel lies on the first point.
  LatticePlaces(std::size_t pixels, double cell);

  std::vector<std::int32_t> points;  // the one before the pixel, or at it
  std::vector<float> weights;        // of the next point: t t t (t (6 t - 15) + 10) of the way there
};

// A channel of fractal noise, row after row.
//
// The sum of octaves, each with features half as large and half as strong as those of the one before it; together they
// reach from 0 to 1. Octaves with features smaller than a pixel are left out.
class NoiseField {
 public:
  // `scale`: pixels of the largest feature, at least 1. At least one octave, at most 8.
  NoiseField(std::uint32_t seed, std::uint32_t channel, double scale, std::uint32_t octaves, std::size_t width,
             std::size_t height);

  // The values of the row, which last until the next call. Fastest from the first row to the last.
  const std::vector<float>& row(std::size_t y);

 private:
  struct Octave {
    std::uint32_t key;
    float strength;
    LatticePlaces columns;
    LatticePlaces rows;
    std::int32_t row = -2;  // of the lattice, that `upper` holds
    std::vector<float> upper{};
    std::vector<float> lower{};
  };
  void addOctave(Octave& octave, std::size_t y);

  std::vector<Octave> octaves_;
  std::vector<float> between_;
  std::vector<float> values_;
};

}  // namespace vorto::effects
