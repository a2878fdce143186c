// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Wipe.h"

#include <algorithm>
#include <cstdint>

namespace vorto::effects {

std::size_t wipeIndex(double start, double step, std::size_t pixel, std::size_t values) {
  const double position = start + static_cast<double>(pixel) * step;
  const double clamped = position > 0 ? std::min(position, 1.0) : 0.0;
  return static_cast<std::size_t>(clamped * static_cast<double>(values - 1) + 0.5);
}

template <class Weight>
void wipeRowScalar(double start, double step, std::size_t first, const Weight* values, std::size_t valueCount,
                   Weight* out, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) out[i] = values[wipeIndex(start, step, first + i, valueCount)];
}

template void wipeRowScalar(double, double, std::size_t, const std::uint32_t*, std::size_t, std::uint32_t*,
                            std::size_t);
template void wipeRowScalar(double, double, std::size_t, const float*, std::size_t, float*, std::size_t);

}  // namespace vorto::effects
