// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/Multiply.h"

namespace vorto::effects {
namespace {

// For alpha the formula is "over" as well, since F * B + F * (1 - B) + B * (1 - F) is F + B - F * B.
template <class Channel>
Channel multiplied(Channel background, Channel foreground, Channel backgroundAlpha, Channel foregroundAlpha) {
  if constexpr (std::is_same_v<Channel, float>) {
    return foreground * background + foreground * (1 - backgroundAlpha) + background * (1 - foregroundAlpha);
  } else {
    using Wide = std::conditional_t<sizeof(Channel) == 1, std::uint32_t, std::uint64_t>;
    const Wide sum = Wide{foreground} * (Wide{background} + kFull<Channel> - backgroundAlpha) +
                     Wide{background} * (kFull<Channel> - foregroundAlpha);
    const Wide rounded = (sum + kFull<Channel> / 2) / kFull<Channel>;
    return static_cast<Channel>(std::min<Wide>(rounded, kFull<Channel>));
  }
}

}  // namespace

template <class Layout>
void multiplyRowScalar(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
                       typename Layout::Channel* out, std::size_t count) {
  for (std::size_t i = 0; i < count * Layout::kChannels; i += Layout::kChannels) {
    const auto backgroundAlpha = background[i + Layout::kAlpha];
    const auto foregroundAlpha = foreground[i + Layout::kAlpha];
    for (int c = 0; c < Layout::kChannels; ++c) {
      out[i + c] = multiplied(background[i + c], foreground[i + c], backgroundAlpha, foregroundAlpha);
    }
  }
}

template void multiplyRowScalar<RGBA8>(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t);
template void multiplyRowScalar<ARGB8>(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t);
template void multiplyRowScalar<RGBA16>(const std::uint16_t*, const std::uint16_t*, std::uint16_t*, std::size_t);
template void multiplyRowScalar<RGBAFloat>(const float*, const float*, float*, std::size_t);

}  // namespace vorto::effects
