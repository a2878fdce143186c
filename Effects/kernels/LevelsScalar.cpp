// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/Levels.h"

namespace vorto::effects {

template <class Layout>
void levelsRowScalar(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                     const LevelsTables<typename Layout::Channel>& tables) {
  using Channel = typename Layout::Channel;
  for (std::size_t i = 0; i < count; ++i, in += Layout::kChannels, out += Layout::kChannels) {
    const Channel alpha = in[Layout::kAlpha];
    const auto newAlpha = tables.keepsAlpha() ? alpha : static_cast<Channel>(tables.alpha[alpha]);
    const auto through = [&](Channel color, const LevelsTable<Channel>& table) {
      if (alpha == 0 && newAlpha == 0) return color;
      return product(static_cast<Channel>(table[alpha == 0 ? color : straight(color, alpha)]), newAlpha);
    };
    out[Layout::kRed] = through(in[Layout::kRed], tables.red);
    out[Layout::kGreen] = through(in[Layout::kGreen], tables.green);
    out[Layout::kBlue] = through(in[Layout::kBlue], tables.blue);
    out[Layout::kAlpha] = newAlpha;
  }
}

template void levelsRowScalar<RGBA8>(const std::uint8_t*, std::uint8_t*, std::size_t,
                                     const LevelsTables<std::uint8_t>&);
template void levelsRowScalar<ARGB8>(const std::uint8_t*, std::uint8_t*, std::size_t,
                                     const LevelsTables<std::uint8_t>&);
template void levelsRowScalar<RGBA16>(const std::uint16_t*, std::uint16_t*, std::size_t,
                                      const LevelsTables<std::uint16_t>&);

}  // namespace vorto::effects
