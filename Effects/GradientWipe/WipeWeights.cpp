// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/GradientWipe/WipeWeights.h"

#include <cmath>
#include <limits>

namespace vorto::effects {

WipeLumas::WipeLumas(const std::vector<GradientEntry<float>>& gradient) : lumas(kGradientSteps) {
  for (std::size_t i = 0; i < kGradientSteps; ++i) {
    lumas[i] = 0.2126 * gradient[i].red + 0.7152 * gradient[i].green + 0.0722 * gradient[i].blue;
    if (std::isnan(lumas[i])) lumas[i] = std::numeric_limits<double>::infinity();  // never shown; NaN has no order
  }
  for (std::size_t block = 0; block < kBlocks; ++block) {
    const auto* const first = lumas.data() + block * kBlockSteps;
    const auto [least, most] = std::minmax_element(first, first + kBlockSteps);
    blocks[block] = {*least, *most};
  }
}

template <class Channel>
void WipeWeights<Channel>::set(const WipeLumas& lumas, double time, double softness) {
  const double edge = time * (1 + softness);
  const auto weightOf = [&](double luma) {
    const double ahead = edge - luma;
    return mixWeight<Channel>(softness > 0 ? ahead / softness : (ahead > 0 ? 1.0 : 0.0));
  };
  // The weight falls with the luma: a block lies between the weights of its range.
  const auto kindOf = [&](const WipeLumas::Range& range) {
    if (weightOf(range.most) == mixWeight<Channel>(1)) return Kind::Second;
    return weightOf(range.least) == 0 ? Kind::First : Kind::Mixed;
  };
  weights_.resize(kGradientSteps);
  runs_.clear();
  for (std::size_t block = 0; block < WipeLumas::kBlocks; ++block) {
    const std::size_t first = block * WipeLumas::kBlockSteps;
    const Kind kind = kindOf(lumas.blocks[block]);
    if (runs_.empty() || runs_.back().kind != kind) runs_.push_back({first, kind});
    if (kind != Kind::Mixed) continue;
    for (std::size_t i = first; i < first + WipeLumas::kBlockSteps; ++i) weights_[i] = weightOf(lumas.lumas[i]);
  }
}

template <class Channel>
const MixWeight<Channel>* WipeWeights<Channel>::everyWeight() {
  for (auto run = runs_.begin(); run != runs_.end(); ++run) {
    if (run->kind == Kind::Mixed) continue;
    const std::size_t end = run + 1 == runs_.end() ? kGradientSteps : (run + 1)->first;
    std::fill(weights_.begin() + static_cast<std::ptrdiff_t>(run->first),
              weights_.begin() + static_cast<std::ptrdiff_t>(end),
              mixWeight<Channel>(run->kind == Kind::Second ? 1 : 0));
  }
  return weights_.data();
}

template class WipeWeights<std::uint8_t>;
template class WipeWeights<std::uint16_t>;
template class WipeWeights<float>;

}  // namespace vorto::effects
