// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/EvenGradient.h"

#include "Ports/VRTStateKeys.h"

namespace vorto::effects {

std::shared_ptr<VRTGradient> evenGradient() {
  using namespace VRTStateKeys;
  constexpr int linear = 1;
  PropertyList samples = PropertyList::array();
  for (const double place : {0.0, 1.0}) {
    for (std::size_t entry = 0; entry < kRGBSamples.entries.size(); ++entry) {
      samples.append(entry == kInterpolation ? PropertyList::integer(linear)
                                             : PropertyList::real(entry == kMiddle ? 0.5 : place));
    }
  }
  PropertyList state;
  state.set(kRGBSamples.key, std::move(samples));
  auto gradient = VRTGradient::gradient();
  gradient->initWithStateValue(state);
  return gradient;
}

}  // namespace vorto::effects
