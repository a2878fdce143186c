// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/GradientMap.h"

#include "Effects/Support/PixelLayout.h"

#include <algorithm>

namespace vorto::effects {
namespace {

// Luma is linear, so that the luma of the straight color is that of the premultiplied one over alpha, rounded once.
template <class Layout, class Channel = typename Layout::Channel>
std::size_t straightLuma(const Channel* pixel) {
  const std::uint64_t sum = std::uint64_t{kRedWeight} * pixel[Layout::kRed] +
                            std::uint64_t{kGreenWeight} * pixel[Layout::kGreen] +
                            std::uint64_t{kBlueWeight} * pixel[Layout::kBlue];
  const Channel alpha = pixel[Layout::kAlpha];
  const std::uint64_t scaled = sum * kFull<Channel> + std::uint64_t{alpha} * 32768;
  return std::min(static_cast<std::uint32_t>(scaled >> 16) / alpha, kFull<Channel>);
}

template <class Layout>
LaidPixel<Layout> colorOf(const typename Layout::Channel* pixel, const LaidPixel<Layout>* table) {
  if constexpr (std::is_same_v<Layout, RGBAFloat>) {
    const float luma =
        (0.2126F * pixel[Layout::kRed] + 0.7152F * pixel[Layout::kGreen] + 0.0722F * pixel[Layout::kBlue]) /
        pixel[Layout::kAlpha];
    const float clamped = luma > 0 ? (luma < 1 ? luma : 1.0F) : 0.0F;
    const float place = clamped * static_cast<float>(kGradientSteps - 1);
    const auto index = static_cast<std::size_t>(place);
    const float part = place - static_cast<float>(index);
    LaidPixel<Layout> color;
    for (std::size_t c = 0; c < color.size(); ++c) {
      color[c] = table[index][c] + (table[index + 1][c] - table[index][c]) * part;
    }
    return color;
  } else {
    return table[straightLuma<Layout>(pixel)];
  }
}

}  // namespace

template <class Layout>
MapTable<Layout> mapTable(const std::vector<GradientEntry<typename Layout::Channel>>& entries) {
  MapTable<Layout> table{std::vector<LaidPixel<Layout>>(entries.size()), true};
  for (std::size_t i = 0; i < entries.size(); ++i) {
    table.entries[i][Layout::kAlpha] = entries[i].alpha;
    table.entries[i][Layout::kRed] = entries[i].red;
    table.entries[i][Layout::kGreen] = entries[i].green;
    table.entries[i][Layout::kBlue] = entries[i].blue;
    table.isOpaque = table.isOpaque && entries[i].alpha == kOne<typename Layout::Channel>;
  }
  return table;
}

template <class Layout>
void gradientMapRowScalar(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                          const MapTable<Layout>& table) {
  for (std::size_t i = 0; i < count; ++i, in += Layout::kChannels, out += Layout::kChannels) {
    if (!(in[Layout::kAlpha] > 0)) {
      std::fill_n(out, Layout::kChannels, typename Layout::Channel{0});
      continue;
    }
    const LaidPixel<Layout> color = colorOf<Layout>(in, table.entries.data());
    const auto coverage = product(color[Layout::kAlpha], in[Layout::kAlpha]);
    out[Layout::kAlpha] = coverage;
    for (const int c : {Layout::kRed, Layout::kGreen, Layout::kBlue}) out[c] = product(color[c], coverage);
  }
}

template MapTable<RGBA8> mapTable<RGBA8>(const std::vector<GradientEntry<std::uint8_t>>&);
template MapTable<ARGB8> mapTable<ARGB8>(const std::vector<GradientEntry<std::uint8_t>>&);
template MapTable<RGBA16> mapTable<RGBA16>(const std::vector<GradientEntry<std::uint16_t>>&);
template MapTable<RGBAFloat> mapTable<RGBAFloat>(const std::vector<GradientEntry<float>>&);
template void gradientMapRowScalar<RGBA8>(const std::uint8_t*, std::uint8_t*, std::size_t, const MapTable<RGBA8>&);
template void gradientMapRowScalar<ARGB8>(const std::uint8_t*, std::uint8_t*, std::size_t, const MapTable<ARGB8>&);
template void gradientMapRowScalar<RGBA16>(const std::uint16_t*, std::uint16_t*, std::size_t, const MapTable<RGBA16>&);
template void gradientMapRowScalar<RGBAFloat>(const float*, float*, std::size_t, const MapTable<RGBAFloat>&);

}  // namespace vorto::effects
