// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/GradientMap/GradientMapKernel.h"

#include "Effects/Support/PixelLayout.h"

#include <algorithm>

namespace vorto::effects {
namespace {

// The weights in 65536ths; they add up to 65536, so that the luma of a grey is the grey.
constexpr std::uint32_t kRedWeight = 13933;
constexpr std::uint32_t kGreenWeight = 46871;
constexpr std::uint32_t kBlueWeight = 4732;

template <class Layout>
std::uint32_t weightedSum(const typename Layout::Channel* pixel) {
  return kRedWeight * pixel[Layout::kRed] + kGreenWeight * pixel[Layout::kGreen] + kBlueWeight * pixel[Layout::kBlue];
}

// Luma is linear, so that the luma of the straight color is that of the premultiplied one over alpha, rounded once.
template <class Channel>
std::size_t straightLuma(std::uint32_t sum, Channel alpha) {
  const std::uint64_t scaled = std::uint64_t{sum} * kFull<Channel> + std::uint64_t{alpha} * 32768;
  return std::min(static_cast<std::uint32_t>(scaled >> 16) / alpha, kFull<Channel>);
}

}  // namespace

template <class Layout>
void gradientMapRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                    const GradientEntry<typename Layout::Channel>* table, const LaidPixel<Layout>* opaque) {
  using Channel = typename Layout::Channel;
  for (std::size_t i = 0; i < count; ++i, in += Layout::kChannels, out += Layout::kChannels) {
    const Channel alpha = in[Layout::kAlpha];
    const std::uint32_t sum = weightedSum<Layout>(in);
    if (alpha == kFull<Channel>) {
      std::copy_n(opaque[(sum + 32768) >> 16].data(), Layout::kChannels, out);
    } else if (alpha != 0) {
      storeEntry<Layout>(table[straightLuma(sum, alpha)], alpha, out);
    } else {
      std::fill_n(out, Layout::kChannels, Channel{0});
    }
  }
}

template void gradientMapRow<RGBA8>(const std::uint8_t*, std::uint8_t*, std::size_t, const GradientEntry<std::uint8_t>*,
                                    const LaidPixel<RGBA8>*);
template void gradientMapRow<ARGB8>(const std::uint8_t*, std::uint8_t*, std::size_t, const GradientEntry<std::uint8_t>*,
                                    const LaidPixel<ARGB8>*);
template void gradientMapRow<RGBA16>(const std::uint16_t*, std::uint16_t*, std::size_t,
                                     const GradientEntry<std::uint16_t>*, const LaidPixel<RGBA16>*);

void gradientMapFloatRow(const float* in, float* out, std::size_t count, const GradientEntry<float>* table) {
  for (std::size_t i = 0; i < count; ++i, in += RGBAFloat::kChannels, out += RGBAFloat::kChannels) {
    const float alpha = in[RGBAFloat::kAlpha];
    if (alpha > 0) {
      const float luma =
          (0.2126F * in[RGBAFloat::kRed] + 0.7152F * in[RGBAFloat::kGreen] + 0.0722F * in[RGBAFloat::kBlue]) / alpha;
      storeEntry<RGBAFloat>(gradientEntryAt(table, luma), alpha, out);
    } else {
      std::fill_n(out, RGBAFloat::kChannels, 0.0F);
    }
  }
}

}  // namespace vorto::effects
