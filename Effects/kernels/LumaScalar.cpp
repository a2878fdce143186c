// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/FloatPixels.h"
#include "Effects/kernels/Luma.h"

namespace vorto::effects {

template <class Layout>
void lumaRowScalar(const typename Layout::Channel* in, float* out, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i, in += Layout::kChannels) {
    const auto red = static_cast<float>(in[Layout::kRed]);
    const auto green = static_cast<float>(in[Layout::kGreen]);
    const auto blue = static_cast<float>(in[Layout::kBlue]);
    out[i] = (0.2126F * red + 0.7152F * green + 0.0722F * blue) * (1 / fullOf<typename Layout::Channel>());
  }
}

template void lumaRowScalar<RGBA8>(const std::uint8_t*, float*, std::size_t);
template void lumaRowScalar<ARGB8>(const std::uint8_t*, float*, std::size_t);
template void lumaRowScalar<RGBA16>(const std::uint16_t*, float*, std::size_t);
template void lumaRowScalar<RGBAFloat>(const float*, float*, std::size_t);

}  // namespace vorto::effects
