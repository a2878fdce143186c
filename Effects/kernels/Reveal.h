// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

namespace vorto::effects {

// How much of the second image shows at places of which it is known how late they change: (edge - place) * steepness,
// within 0 and 1; none at places that are no number. An infinite steepness shows all of it below the edge, and nothing
// at the edge itself. Weight is std::uint32_t (0 to kMixOne, to the nearest) or float.
template <class Weight>
void revealRow(const float* places, float edge, float steepness, Weight* out, std::size_t count);

// The definition.
template <class Weight>
void revealRowScalar(const float* places, float edge, float steepness, Weight* out, std::size_t count);

}  // namespace vorto::effects
