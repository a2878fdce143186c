// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Levels/LevelsKernel.h"

#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/PixelLayout.h"

namespace vorto::effects {

template <class Layout>
void levelsRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
               const LevelsTables<typename Layout::Channel>& tables) {
  using Channel = typename Layout::Channel;
  for (std::size_t i = 0; i < count; ++i, in += Layout::channels, out += Layout::channels) {
    const Channel alpha = in[Layout::alpha];
    const Channel newAlpha = tables.alpha[alpha];
    Channel red = in[Layout::red];
    Channel green = in[Layout::green];
    Channel blue = in[Layout::blue];
    if (alpha == full<Channel> && newAlpha == full<Channel>) {  // most pixels of most images
      out[Layout::red] = tables.red[red];
      out[Layout::green] = tables.green[green];
      out[Layout::blue] = tables.blue[blue];
      out[Layout::alpha] = newAlpha;
      continue;
    }
    if (alpha != 0 && alpha != full<Channel>) {
      red = straight(red, alpha);
      green = straight(green, alpha);
      blue = straight(blue, alpha);
    }
    if (alpha != 0 || newAlpha != 0) {
      red = product(tables.red[red], newAlpha);
      green = product(tables.green[green], newAlpha);
      blue = product(tables.blue[blue], newAlpha);
    }
    out[Layout::red] = red;
    out[Layout::green] = green;
    out[Layout::blue] = blue;
    out[Layout::alpha] = newAlpha;
  }
}

template void levelsRow<RGBA8>(const std::uint8_t*, std::uint8_t*, std::size_t, const LevelsTables<std::uint8_t>&);
template void levelsRow<ARGB8>(const std::uint8_t*, std::uint8_t*, std::size_t, const LevelsTables<std::uint8_t>&);
template void levelsRow<RGBA16>(const std::uint16_t*, std::uint16_t*, std::size_t, const LevelsTables<std::uint16_t>&);

void levelsFloatRow(const float* in, float* out, std::size_t count, const LevelsCurves& curves) {
  const bool keepsColor = curves.red.isNeutral() && curves.green.isNeutral() && curves.blue.isNeutral();
  for (std::size_t i = 0; i < count; ++i, in += RGBAFloat::channels, out += RGBAFloat::channels) {
    const float alpha = in[RGBAFloat::alpha];
    const float newAlpha = curves.alpha.apply(alpha);
    const bool covered = alpha > 0;
    float red = in[RGBAFloat::red];
    float green = in[RGBAFloat::green];
    float blue = in[RGBAFloat::blue];
    if ((covered || newAlpha > 0) && !(keepsColor && newAlpha == alpha)) {
      const float divisor = covered ? alpha : 1.0F;
      red = curves.red.apply(red / divisor) * newAlpha;
      green = curves.green.apply(green / divisor) * newAlpha;
      blue = curves.blue.apply(blue / divisor) * newAlpha;
    }
    out[RGBAFloat::red] = red;
    out[RGBAFloat::green] = green;
    out[RGBAFloat::blue] = blue;
    out[RGBAFloat::alpha] = newAlpha;
  }
}

}  // namespace vorto::effects
