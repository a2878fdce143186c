// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/GradientWipe/WipeWeights.h"

namespace vorto::effects {

template <class Channel>
std::vector<MixWeight<Channel>> wipeWeights(const std::vector<GradientEntry<float>>& gradient, double time,
                                            double softness) {
  std::vector<MixWeight<Channel>> weights(kGradientSteps);
  const double edge = time * (1 + softness);
  for (std::size_t i = 0; i < kGradientSteps; ++i) {
    const GradientEntry<float>& entry = gradient[i];
    const double luma = 0.2126 * entry.red + 0.7152 * entry.green + 0.0722 * entry.blue;
    const double ahead = edge - luma;
    weights[i] = mixWeight<Channel>(softness > 0 ? ahead / softness : (ahead > 0 ? 1.0 : 0.0));
  }
  return weights;
}

template std::vector<std::uint32_t> wipeWeights<std::uint8_t>(const std::vector<GradientEntry<float>>&, double, double);
template std::vector<std::uint32_t> wipeWeights<std::uint16_t>(const std::vector<GradientEntry<float>>&, double,
                                                               double);
template std::vector<float> wipeWeights<float>(const std::vector<GradientEntry<float>>&, double, double);

}  // namespace vorto::effects
