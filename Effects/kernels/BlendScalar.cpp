// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/Blend.h"

namespace vorto::effects {
namespace {

float blended(OverMode, float background, float foreground, float, float foregroundAlpha) {
  return foreground + background * (1 - foregroundAlpha);
}

template <class Channel>
Channel blended(OverMode, Channel background, Channel foreground, Channel, Channel foregroundAlpha) {
  const auto uncovered = static_cast<Channel>(kFull<Channel> - foregroundAlpha);
  const std::uint32_t sum = std::uint32_t{foreground} + product(background, uncovered);
  return static_cast<Channel>(std::min(sum, kFull<Channel>));
}

// For alpha the formula is "over" as well, since F * B + F * (1 - B) + B * (1 - F) is F + B - F * B.
float blended(MultiplyMode, float background, float foreground, float backgroundAlpha, float foregroundAlpha) {
  return foreground * background + foreground * (1 - backgroundAlpha) + background * (1 - foregroundAlpha);
}

template <class Channel>
Channel blended(MultiplyMode, Channel background, Channel foreground, Channel backgroundAlpha,
                Channel foregroundAlpha) {
  using Wide = std::conditional_t<sizeof(Channel) == 1, std::uint32_t, std::uint64_t>;
  const Wide sum = Wide{foreground} * (Wide{background} + kFull<Channel> - backgroundAlpha) +
                   Wide{background} * (kFull<Channel> - foregroundAlpha);
  const Wide rounded = (sum + kFull<Channel> / 2) / kFull<Channel>;
  return static_cast<Channel>(std::min<Wide>(rounded, kFull<Channel>));
}

}  // namespace

template <class Mode, class Layout>
void blendRowScalar(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
                    typename Layout::Channel* out, std::size_t count) {
  for (std::size_t i = 0; i < count * Layout::kChannels; i += Layout::kChannels) {
    const auto backgroundAlpha = background[i + Layout::kAlpha];
    const auto foregroundAlpha = foreground[i + Layout::kAlpha];
    for (int c = 0; c < Layout::kChannels; ++c) {
      out[i + c] = blended(Mode(), background[i + c], foreground[i + c], backgroundAlpha, foregroundAlpha);
    }
  }
}

using Byte = std::uint8_t;
using Word = std::uint16_t;
template void blendRowScalar<OverMode, RGBA8>(const Byte*, const Byte*, Byte*, std::size_t);
template void blendRowScalar<OverMode, ARGB8>(const Byte*, const Byte*, Byte*, std::size_t);
template void blendRowScalar<OverMode, RGBA16>(const Word*, const Word*, Word*, std::size_t);
template void blendRowScalar<OverMode, RGBAFloat>(const float*, const float*, float*, std::size_t);
template void blendRowScalar<MultiplyMode, RGBA8>(const Byte*, const Byte*, Byte*, std::size_t);
template void blendRowScalar<MultiplyMode, ARGB8>(const Byte*, const Byte*, Byte*, std::size_t);
template void blendRowScalar<MultiplyMode, RGBA16>(const Word*, const Word*, Word*, std::size_t);
template void blendRowScalar<MultiplyMode, RGBAFloat>(const float*, const float*, float*, std::size_t);

}  // namespace vorto::effects
