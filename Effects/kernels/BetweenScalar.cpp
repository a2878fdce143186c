// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Between.h"

namespace vorto::effects {

void addBetweenRowScalar(const float* samples, const std::int32_t* places, const float* weights, float strength,
                         float* values, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const float left = samples[places[i]];
    const float right = samples[places[i] + 1];
    values[i] = values[i] + strength * (left + (right - left) * weights[i]);
  }
}

void betweenRows(const float* a, const float* b, float weight, float* out, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) out[i] = a[i] + (b[i] - a[i]) * weight;
}

}  // namespace vorto::effects
