// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

namespace vorto::effects {

// Adds strength * (l + (r - l) * weight) to each of `count` values, where l and r are the samples at the value's place
// and behind it.
void addBetweenRow(const float* samples, const std::int32_t* places, const float* weights, float strength,
                   float* values, std::size_t count);

// The definition.
void addBetweenRowScalar(const float* samples, const std::int32_t* places, const float* weights, float strength,
                         float* values, std::size_t count);

// out = a + (b - a) * weight for `count` values.
void betweenRows(const float* a, const float* b, float weight, float* out, std::size_t count);

}  // namespace vorto::effects
