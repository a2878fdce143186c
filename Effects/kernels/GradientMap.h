// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/GradientTable.h"

#include <cstddef>

// Replaces each pixel's color by the gradient's color at its luma.
//
// The luma is that of the straight color, with the weights of ITU-R BT.709-6, item 3.2: 0.2126 R + 0.7152 G + 0.0722 B.
// At integer depths it is rounded to the depth, which makes it the index of the table. The gradient's opacity
// multiplies the pixel's alpha. A pixel without alpha, or with one that is negative or NaN, becomes transparent black;
// a luma that is NaN takes the gradient's first color.
namespace vorto::effects {

// The gradient's entries as pixels of a layout, not premultiplied: of integers one for each value of a channel, 256 or
// 65536; of floats kGradientSteps and one more (floatGradientTable()), between which positions are interpolated.
template <class Layout>
struct MapTable {
  std::vector<LaidPixel<Layout>> entries;
  bool isOpaque;  // all of them are
};

template <class Layout>
MapTable<Layout> mapTable(const std::vector<GradientEntry<typename Layout::Channel>>& entries);

// For RGBA8, ARGB8, RGBA16 and RGBAFloat (PixelLayout.h). The rows do not overlap.
template <class Layout>
void gradientMapRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                    const MapTable<Layout>& table);

// The definition.
template <class Layout>
void gradientMapRowScalar(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                          const MapTable<Layout>& table);

// Of integer lumas, in 65536ths; they add up to 65536, so that the luma of a grey is the grey.
inline constexpr std::uint32_t kRedWeight = 13933;
inline constexpr std::uint32_t kGreenWeight = 46871;
inline constexpr std::uint32_t kBlueWeight = 4732;

}  // namespace vorto::effects
