// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/ColorMatrix.h"
#include "Effects/kernels/FloatPixels.h"

namespace vorto::effects {
namespace {

float weighted(const std::array<float, 5>& row, float red, float green, float blue, float alpha) {
  return ((row[0] * red + row[1] * green) + (row[2] * blue + row[3] * alpha)) + row[4];
}

// NaN is 0.
float cut(float value) {
  return value > 0 ? std::min(value, 1.0F) : 0.0F;
}

}  // namespace

template <class Layout>
void colorMatrixRowScalar(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                          const ColorMatrix& matrix) {
  using Channel = typename Layout::Channel;
  constexpr bool isFloat = std::is_same_v<Channel, float>;
  constexpr float full = fullOf<Channel>();
  for (std::size_t i = 0; i < count; ++i, in += 4, out += 4) {
    const auto stored = static_cast<float>(in[Layout::kAlpha]);
    const float share = stored > 0 ? 1 / stored : 0.0F;
    const auto straight = [&](int c) { return stored > 0 ? static_cast<float>(in[c]) * share : 0.0F; };
    const float red = straight(Layout::kRed), green = straight(Layout::kGreen), blue = straight(Layout::kBlue);
    const float alpha = (stored > 0 ? stored : 0.0F) * (1 / full);
    const float newAlpha = cut(weighted(matrix[3], red, green, blue, alpha)) * full;
    const int places[] = {Layout::kRed, Layout::kGreen, Layout::kBlue};
    for (std::size_t c = 0; c < 3; ++c) {
      const float color = weighted(matrix[c], red, green, blue, alpha);
      out[places[c]] = storedChannel<Channel>((isFloat ? color : cut(color)) * newAlpha, newAlpha);
    }
    out[Layout::kAlpha] = storedChannel<Channel>(newAlpha, newAlpha);
  }
}

using Byte = std::uint8_t;
using Word = std::uint16_t;
template void colorMatrixRowScalar<RGBA8>(const Byte*, Byte*, std::size_t, const ColorMatrix&);
template void colorMatrixRowScalar<ARGB8>(const Byte*, Byte*, std::size_t, const ColorMatrix&);
template void colorMatrixRowScalar<RGBA16>(const Word*, Word*, std::size_t, const ColorMatrix&);
template void colorMatrixRowScalar<RGBAFloat>(const float*, float*, std::size_t, const ColorMatrix&);

}  // namespace vorto::effects
