// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Wipe.h"

#include <algorithm>
#include <cstdint>

namespace vorto::effects {

template <class Weight>
void wipeRowScalar(double start, double step, const Weight* values, std::size_t steps, Weight* out, std::size_t first,
                   std::size_t count) {
  for (std::size_t i = first; i < count; ++i) {
    const double position = start + static_cast<double>(i) * step;
    const double clamped = position > 0 ? std::min(position, 1.0) : 0.0;
    out[i] = values[static_cast<int>(clamped * static_cast<double>(steps - 1) + 0.5)];
  }
}

template void wipeRowScalar(double, double, const std::uint32_t*, std::size_t, std::uint32_t*, std::size_t,
                            std::size_t);
template void wipeRowScalar(double, double, const float*, std::size_t, float*, std::size_t, std::size_t);

}  // namespace vorto::effects
