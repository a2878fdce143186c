// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/GradientRamp/GradientRampKernel.h"

#include "Effects/Support/PixelLayout.h"

namespace vorto::effects {

template <class Layout>
void gradientRampRow(double start, double step, typename Layout::Channel* out, std::size_t count,
                     const LaidPixel<Layout>* table) {
  for (std::size_t i = 0; i < count; ++i, out += Layout::kChannels) {
    const double position = start + static_cast<double>(i) * step;
    const double clamped = position > 0 ? std::min(position, 1.0) : 0.0;
    const auto nearest = static_cast<std::size_t>(clamped * (kGradientSteps - 1) + 0.5);
    std::copy_n(table[nearest].data(), Layout::kChannels, out);
  }
}

template void gradientRampRow<RGBA8>(double, double, std::uint8_t*, std::size_t, const LaidPixel<RGBA8>*);
template void gradientRampRow<RGBA16>(double, double, std::uint16_t*, std::size_t, const LaidPixel<RGBA16>*);

void gradientRampFloatRow(double start, double step, float* out, std::size_t count, const GradientEntry<float>* table) {
  for (std::size_t i = 0; i < count; ++i, out += RGBAFloat::kChannels) {
    const auto position = static_cast<float>(start + static_cast<double>(i) * step);
    storeEntry<RGBAFloat>(gradientEntryAt(table, position), 1.0F, out);
  }
}

}  // namespace vorto::effects
