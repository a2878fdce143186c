// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/Arithmetic.h"
#include "Effects/kernels/Luma.h"

namespace vorto::effects {
namespace {

template <class Channel>
constexpr float unit() {
  if constexpr (std::is_same_v<Channel, float>) {
    return 1;
  } else {
    return 1 / static_cast<float>(kFull<Channel>);
  }
}

}  // namespace

template <class Layout>
void lumaRowScalar(const typename Layout::Channel* in, float* out, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i, in += Layout::kChannels) {
    const auto red = static_cast<float>(in[Layout::kRed]);
    const auto green = static_cast<float>(in[Layout::kGreen]);
    const auto blue = static_cast<float>(in[Layout::kBlue]);
    out[i] = (0.2126F * red + 0.7152F * green + 0.0722F * blue) * unit<typename Layout::Channel>();
  }
}

template void lumaRowScalar<RGBA8>(const std::uint8_t*, float*, std::size_t);
template void lumaRowScalar<ARGB8>(const std::uint8_t*, float*, std::size_t);
template void lumaRowScalar<RGBA16>(const std::uint16_t*, float*, std::size_t);
template void lumaRowScalar<RGBAFloat>(const float*, float*, std::size_t);

}  // namespace vorto::effects
