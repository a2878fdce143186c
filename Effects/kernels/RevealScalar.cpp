// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/Arithmetic.h"
#include "Effects/kernels/Reveal.h"

namespace vorto::effects {

template <class Weight>
void revealRowScalar(const float* places, float edge, float steepness, Weight* out, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const float ahead = (edge - places[i]) * steepness;
    const float weight = ahead > 0 ? (ahead < 1 ? ahead : 1.0F) : 0.0F;
    if constexpr (std::is_same_v<Weight, float>) {
      out[i] = weight;
    } else {
      out[i] = static_cast<Weight>(weight * static_cast<float>(kMixOne) + 0.5F);
    }
  }
}

template void revealRowScalar(const float*, float, float, std::uint32_t*, std::size_t);
template void revealRowScalar(const float*, float, float, float*, std::size_t);

}  // namespace vorto::effects
