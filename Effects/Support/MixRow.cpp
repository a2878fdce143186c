// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/MixRow.h"

#include "Effects/Support/Clones.h"

namespace vorto::effects {

template <class Channel>
VORTO_CLONES void mixRow(const Channel* a, const Channel* b, Channel* out, std::size_t count,
                         MixWeight<Channel> weight) {
  for (std::size_t i = 0; i < count; ++i) out[i] = mixed(a[i], b[i], weight);
}

template <class Channel>
VORTO_CLONES void mixPixels(const Channel* a, const Channel* b, Channel* out, std::size_t count,
                            const MixWeight<Channel>* weights) {
  constexpr std::size_t channels = 4;
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t c = channels * i; c < channels * i + channels; ++c) out[c] = mixed(a[c], b[c], weights[i]);
  }
}

template void mixRow(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t, std::uint32_t);
template void mixRow(const std::uint16_t*, const std::uint16_t*, std::uint16_t*, std::size_t, std::uint32_t);
template void mixRow(const float*, const float*, float*, std::size_t, float);
template void mixPixels(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t, const std::uint32_t*);
template void mixPixels(const std::uint16_t*, const std::uint16_t*, std::uint16_t*, std::size_t, const std::uint32_t*);
template void mixPixels(const float*, const float*, float*, std::size_t, const float*);

}  // namespace vorto::effects
