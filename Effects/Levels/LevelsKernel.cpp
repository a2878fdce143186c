// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Levels/LevelsKernel.h"

#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/PixelLayout.h"

namespace vorto::effects {

template <class Layout>
void levelsRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
               const LevelsTables<typename Layout::Channel>& tables) {
  using Channel = typename Layout::Channel;
  for (std::size_t i = 0; i < count; ++i, in += Layout::kChannels, out += Layout::kChannels) {
    const Channel alpha = in[Layout::kAlpha];
    const Channel newAlpha = tables.alpha[alpha];
    Channel red = in[Layout::kRed];
    Channel green = in[Layout::kGreen];
    Channel blue = in[Layout::kBlue];
    if (alpha == kFull<Channel> && newAlpha == kFull<Channel>) {  // most pixels of most images
      out[Layout::kRed] = tables.red[red];
      out[Layout::kGreen] = tables.green[green];
      out[Layout::kBlue] = tables.blue[blue];
      out[Layout::kAlpha] = newAlpha;
      continue;
    }
    if (alpha != 0 && alpha != kFull<Channel>) {
      red = straight(red, alpha);
      green = straight(green, alpha);
      blue = straight(blue, alpha);
    }
    if (alpha != 0 || newAlpha != 0) {
      red = product(tables.red[red], newAlpha);
      green = product(tables.green[green], newAlpha);
      blue = product(tables.blue[blue], newAlpha);
    }
    out[Layout::kRed] = red;
    out[Layout::kGreen] = green;
    out[Layout::kBlue] = blue;
    out[Layout::kAlpha] = newAlpha;
  }
}

template void levelsRow<RGBA8>(const std::uint8_t*, std::uint8_t*, std::size_t, const LevelsTables<std::uint8_t>&);
template void levelsRow<ARGB8>(const std::uint8_t*, std::uint8_t*, std::size_t, const LevelsTables<std::uint8_t>&);
template void levelsRow<RGBA16>(const std::uint16_t*, std::uint16_t*, std::size_t, const LevelsTables<std::uint16_t>&);

void levelsFloatRow(const float* in, float* out, std::size_t count, const LevelsCurves& curves) {
  const bool keepsColor = curves.red.isNeutral() && curves.green.isNeutral() && curves.blue.isNeutral();
  const bool keepsAlpha = curves.alpha.isNeutral();
  for (std::size_t i = 0; i < count; ++i, in += RGBAFloat::kChannels, out += RGBAFloat::kChannels) {
    const float alpha = in[RGBAFloat::kAlpha];
    const float newAlpha = keepsAlpha ? alpha : curves.alpha.applyClipped(alpha);
    const bool covered = alpha > 0;
    float red = in[RGBAFloat::kRed];
    float green = in[RGBAFloat::kGreen];
    float blue = in[RGBAFloat::kBlue];
    if ((covered || newAlpha > 0) && !(keepsColor && newAlpha == alpha)) {
      const float divisor = covered ? alpha : 1.0F;
      red = curves.red.apply(red / divisor) * newAlpha;
      green = curves.green.apply(green / divisor) * newAlpha;
      blue = curves.blue.apply(blue / divisor) * newAlpha;
    }
    out[RGBAFloat::kRed] = red;
    out[RGBAFloat::kGreen] = green;
    out[RGBAFloat::kBlue] = blue;
    out[RGBAFloat::kAlpha] = newAlpha;
  }
}

}  // namespace vorto::effects
