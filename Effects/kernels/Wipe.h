// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

namespace vorto::effects {

// Pixels of a row that lies on a ramp, pixel i at the position start + i * step. Values stand for the positions 0 to 1;
// a pixel takes the nearest of them, positions outside the ends, NaN the first. There are 1 to 2^24 values.
std::size_t wipeIndex(double start, double step, std::size_t pixel, std::size_t values);

// The values of `count` pixels from `first` on. Weight is std::uint32_t or float.
template <class Weight>
void wipeRow(double start, double step, std::size_t first, const Weight* values, std::size_t valueCount, Weight* out,
             std::size_t count);

// The definition.
template <class Weight>
void wipeRowScalar(double start, double step, std::size_t first, const Weight* values, std::size_t valueCount,
                   Weight* out, std::size_t count);

}  // namespace vorto::effects
