// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/GradientWipe/WipeWeights.h"

namespace vorto::effects {

std::vector<double> wipeLumas(const std::vector<GradientEntry<float>>& gradient) {
  std::vector<double> lumas(kGradientSteps);
  for (std::size_t i = 0; i < kGradientSteps; ++i) {
    lumas[i] = 0.2126 * gradient[i].red + 0.7152 * gradient[i].green + 0.0722 * gradient[i].blue;
  }
  return lumas;
}

template <class Channel>
void wipeWeights(const std::vector<double>& lumas, double time, double softness,
                 std::vector<MixWeight<Channel>>& weights) {
  weights.resize(lumas.size());
  const double edge = time * (1 + softness);
  for (std::size_t i = 0; i < lumas.size(); ++i) {
    const double ahead = edge - lumas[i];
    weights[i] = mixWeight<Channel>(softness > 0 ? ahead / softness : (ahead > 0 ? 1.0 : 0.0));
  }
}

template void wipeWeights<std::uint8_t>(const std::vector<double>&, double, double, std::vector<std::uint32_t>&);
template void wipeWeights<std::uint16_t>(const std::vector<double>&, double, double, std::vector<std::uint32_t>&);
template void wipeWeights<float>(const std::vector<double>&, double, double, std::vector<float>&);

}  // namespace vorto::effects
