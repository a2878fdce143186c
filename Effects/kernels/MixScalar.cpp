// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Mix.h"

namespace vorto::effects {

constexpr std::size_t kChannels = 4;

template <class Channel>
void mixRowScalar(const Channel* a, const Channel* b, Channel* out, std::size_t count, MixWeight<Channel> weight) {
  for (std::size_t i = 0; i < count * kChannels; ++i) out[i] = mixed(a[i], b[i], weight);
}

template <class Channel>
void mixPixelsScalar(const Channel* a, const Channel* b, Channel* out, std::size_t count,
                     const MixWeight<Channel>* weights) {
  for (std::size_t i = 0; i < count * kChannels; ++i) out[i] = mixed(a[i], b[i], weights[i / kChannels]);
}

template void mixRowScalar(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t, std::uint32_t);
template void mixRowScalar(const std::uint16_t*, const std::uint16_t*, std::uint16_t*, std::size_t, std::uint32_t);
template void mixRowScalar(const float*, const float*, float*, std::size_t, float);
template void mixPixelsScalar(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t,
                              const std::uint32_t*);
template void mixPixelsScalar(const std::uint16_t*, const std::uint16_t*, std::uint16_t*, std::size_t,
                              const std::uint32_t*);
template void mixPixelsScalar(const float*, const float*, float*, std::size_t, const float*);

}  // namespace vorto::effects
