// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/PixelLayout.h"

#include <cstddef>
#include <vector>

class VRTGradient;

namespace vorto::effects {

// One entry of a gradient, not premultiplied, in the order in which gradients fill their tables.
template <class Channel>
struct GradientEntry {
  Channel alpha;
  Channel red;
  Channel green;
  Channel blue;
};

// Positions above 8 bits: as many entries as a 16-bit channel has values.
inline constexpr std::size_t kGradientSteps = 65536;

// gradientSteps entries over the positions 0 to 1, then the last one once more, so that an interpolation at position 1
// may read its right neighbor.
std::vector<GradientEntry<float>> floatGradientTable(const VRTGradient& gradient);

// The 256 entries of the gradient's 8-bit table.
std::vector<GradientEntry<std::uint8_t>> byteGradientTable(const VRTGradient& gradient);

// The float table rounded to an integer depth.
template <class Channel>
std::vector<GradientEntry<Channel>> roundedGradientTable(const VRTGradient& gradient);

// The entry at a position: between two entries of the float table on a straight line; the ends outside 0 to 1, the
// first entry for NaN.
inline GradientEntry<float> gradientEntryAt(const GradientEntry<float>* table, float position) {
  const float clamped = position > 0 ? (position < 1 ? position : 1.0F) : 0.0F;
  const float place = clamped * static_cast<float>(kGradientSteps - 1);
  const auto index = static_cast<std::size_t>(place);
  const float part = place - static_cast<float>(index);
  const GradientEntry<float>& left = table[index];
  const GradientEntry<float>& right = table[index + 1];
  return {left.alpha + (right.alpha - left.alpha) * part, left.red + (right.red - left.red) * part,
          left.green + (right.green - left.green) * part, left.blue + (right.blue - left.blue) * part};
}

// A pixel of a gradient's color under an alpha, premultiplied.
template <class Layout, class Channel = typename Layout::Channel>
void storeEntry(const GradientEntry<Channel>& entry, Channel alpha, Channel* out) {
  const Channel coverage = product(entry.alpha, alpha);
  out[Layout::kAlpha] = coverage;
  out[Layout::kRed] = product(entry.red, coverage);
  out[Layout::kGreen] = product(entry.green, coverage);
  out[Layout::kBlue] = product(entry.blue, coverage);
}

// The pixels of opaque images, ready to be copied.
template <class Layout, class Channel = typename Layout::Channel>
std::vector<LaidPixel<Layout>> laidTable(const std::vector<GradientEntry<Channel>>& table) {
  std::vector<LaidPixel<Layout>> pixels(table.size());
  for (std::size_t i = 0; i < table.size(); ++i) {
    storeEntry<Layout>(table[i], static_cast<Channel>(kFull<Channel>), pixels[i].data());
  }
  return pixels;
}

}  // namespace vorto::effects
