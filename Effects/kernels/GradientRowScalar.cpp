// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/GradientRow.h"

namespace vorto::effects {
namespace {

// Among the kGradientSteps steps.
float placeOf(float position) {
  const float clamped = position > 0 ? (position < 1 ? position : 1.0F) : 0.0F;
  return clamped * static_cast<float>(kGradientSteps - 1);
}

std::size_t nearestPlace(float position) {
  return static_cast<std::size_t>(placeOf(position) + 0.5F);
}

}  // namespace

template <class Layout>
void gradientRowScalar(const float* positions, typename Layout::Channel* out, std::size_t count,
                       const LaidPixel<Layout>* table) {
  for (std::size_t i = 0; i < count; ++i, out += Layout::kChannels) {
    std::copy_n(table[nearestPlace(positions[i])].data(), Layout::kChannels, out);
  }
}

template <class Value>
void valueRowScalar(const float* positions, Value* out, std::size_t count, const Value* values) {
  for (std::size_t i = 0; i < count; ++i) out[i] = values[nearestPlace(positions[i])];
}

void gradientFloatRowScalar(const float* positions, float* out, std::size_t count, const LaidPixel<RGBAFloat>* table) {
  constexpr int kAlpha = RGBAFloat::kAlpha;
  for (std::size_t i = 0; i < count; ++i, out += RGBAFloat::kChannels) {
    const float place = placeOf(positions[i]);
    const auto index = static_cast<std::size_t>(place);
    const float part = place - static_cast<float>(index);
    const LaidPixel<RGBAFloat>& left = table[index];
    const LaidPixel<RGBAFloat>& right = table[index + 1];
    const float alpha = left[kAlpha] + (right[kAlpha] - left[kAlpha]) * part;
    for (int c = 0; c < kAlpha; ++c) out[c] = (left[c] + (right[c] - left[c]) * part) * alpha;
    out[kAlpha] = alpha;
  }
}

template void valueRowScalar(const float*, std::uint32_t*, std::size_t, const std::uint32_t*);
template void valueRowScalar(const float*, float*, std::size_t, const float*);
template void gradientRowScalar<RGBA8>(const float*, std::uint8_t*, std::size_t, const LaidPixel<RGBA8>*);
template void gradientRowScalar<RGBA16>(const float*, std::uint16_t*, std::size_t, const LaidPixel<RGBA16>*);

}  // namespace vorto::effects
