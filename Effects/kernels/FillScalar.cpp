// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/Fill.h"

namespace vorto::effects {

template <class Layout>
void fillRowScalar(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                   const LaidPixel<Layout>& color) {
  for (std::size_t i = 0; i < count * Layout::kChannels; i += Layout::kChannels) {
    for (std::size_t c = 0; c < color.size(); ++c) out[i + c] = product(color[c], in[i + Layout::kAlpha]);
  }
}

using Byte = std::uint8_t;
using Word = std::uint16_t;
template void fillRowScalar<RGBA8>(const Byte*, Byte*, std::size_t, const LaidPixel<RGBA8>&);
template void fillRowScalar<ARGB8>(const Byte*, Byte*, std::size_t, const LaidPixel<ARGB8>&);
template void fillRowScalar<RGBA16>(const Word*, Word*, std::size_t, const LaidPixel<RGBA16>&);
template void fillRowScalar<RGBAFloat>(const float*, float*, std::size_t, const LaidPixel<RGBAFloat>&);

}  // namespace vorto::effects
