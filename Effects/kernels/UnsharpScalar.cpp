// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/FloatPixels.h"
#include "Effects/kernels/Unsharp.h"

#include <cmath>

namespace vorto::effects {

template <class Layout>
void unsharpRowScalar(const typename Layout::Channel* in, const float* blurred, typename Layout::Channel* out,
                      std::size_t count, UnsharpSettings settings) {
  using Channel = typename Layout::Channel;
  for (std::size_t i = 0; i < count; ++i, in += 4, blurred += 4, out += 4) {
    const auto alpha = static_cast<float>(in[Layout::kAlpha]);
    const float around = blurred[Layout::kAlpha];
    const bool isShown = alpha > 0 && around > 0;
    const float share = alpha / (isShown ? around : 1.0F);
    const float least = settings.threshold * alpha;
    for (const int c : {Layout::kRed, Layout::kGreen, Layout::kBlue}) {
      const auto color = static_cast<float>(in[c]);
      const float difference = color - blurred[c] * share;
      const bool counts = isShown && std::abs(difference) >= least;
      out[c] = storedChannel<Channel>(counts ? color + settings.amount * difference : color, alpha);
    }
    out[Layout::kAlpha] = in[Layout::kAlpha];
  }
}

using Byte = std::uint8_t;
using Word = std::uint16_t;
template void unsharpRowScalar<RGBA8>(const Byte*, const float*, Byte*, std::size_t, UnsharpSettings);
template void unsharpRowScalar<ARGB8>(const Byte*, const float*, Byte*, std::size_t, UnsharpSettings);
template void unsharpRowScalar<RGBA16>(const Word*, const float*, Word*, std::size_t, UnsharpSettings);
template void unsharpRowScalar<RGBAFloat>(const float*, const float*, float*, std::size_t, UnsharpSettings);

}  // namespace vorto::effects
