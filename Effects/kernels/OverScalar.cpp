// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/Over.h"

namespace vorto::effects {
namespace {

template <class Channel>
Channel over(Channel background, Channel foreground, Channel uncovered) {
  if constexpr (std::is_same_v<Channel, float>) {
    return foreground + background * uncovered;
  } else {
    const std::uint32_t sum = std::uint32_t{foreground} + product(background, uncovered);
    return static_cast<Channel>(std::min(sum, kFull<Channel>));
  }
}

}  // namespace

template <class Layout>
void overRowScalar(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
                   typename Layout::Channel* out, std::size_t count) {
  using Channel = typename Layout::Channel;
  constexpr Channel one = std::is_same_v<Channel, float> ? Channel{1} : std::numeric_limits<Channel>::max();
  for (std::size_t i = 0; i < count * Layout::kChannels; i += Layout::kChannels) {
    const auto uncovered = static_cast<Channel>(one - foreground[i + Layout::kAlpha]);
    for (int c = 0; c < Layout::kChannels; ++c) out[i + c] = over(background[i + c], foreground[i + c], uncovered);
  }
}

template void overRowScalar<RGBA8>(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t);
template void overRowScalar<ARGB8>(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t);
template void overRowScalar<RGBA16>(const std::uint16_t*, const std::uint16_t*, std::uint16_t*, std::size_t);
template void overRowScalar<RGBAFloat>(const float*, const float*, float*, std::size_t);

}  // namespace vorto::effects
