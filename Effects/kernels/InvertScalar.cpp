// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/Invert.h"

namespace vorto::effects {

template <class Layout>
void invertRowScalar(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count) {
  using Channel = typename Layout::Channel;
  for (std::size_t i = 0; i < count * Layout::kChannels; i += Layout::kChannels) {
    const Channel alpha = in[i + Layout::kAlpha];
    for (const int c : {Layout::kRed, Layout::kGreen, Layout::kBlue}) {
      const Channel color = in[i + c];
      const bool isAbove = !std::is_same_v<Channel, float> && color > alpha;
      out[i + c] = isAbove ? Channel{0} : static_cast<Channel>(alpha - color);
    }
    out[i + Layout::kAlpha] = alpha;
  }
}

template void invertRowScalar<RGBA8>(const std::uint8_t*, std::uint8_t*, std::size_t);
template void invertRowScalar<ARGB8>(const std::uint8_t*, std::uint8_t*, std::size_t);
template void invertRowScalar<RGBA16>(const std::uint16_t*, std::uint16_t*, std::size_t);
template void invertRowScalar<RGBAFloat>(const float*, float*, std::size_t);

}  // namespace vorto::effects
