// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

namespace vorto::effects {

// Where a row of `count` pixels lies on a ramp: at the positions start, start + step, ...; each takes the nearest of
// `steps` values that stand for the positions 0 to 1, and positions outside take the ends, NaN the first. At least one
// step, at most 2^24. Weight is std::uint32_t or float.
template <class Weight>
void wipeRow(double start, double step, const Weight* values, std::size_t steps, Weight* out, std::size_t count);

// The definition, from the pixel `first` on.
template <class Weight>
void wipeRowScalar(double start, double step, const Weight* values, std::size_t steps, Weight* out, std::size_t first,
                   std::size_t count);

}  // namespace vorto::effects
