// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <utility>

namespace vorto::effects {

// Where a layout keeps its channels. Every layout that effects take has four channels without padding between pixels.
template <class ChannelType, int R, int G, int B, int A>
struct PixelLayout {
  using Channel = ChannelType;
  static constexpr int red = R;
  static constexpr int green = G;
  static constexpr int blue = B;
  static constexpr int alpha = A;
  static constexpr int channels = 4;
};

using RGBA8 = PixelLayout<std::uint8_t, 0, 1, 2, 3>;
using ARGB8 = PixelLayout<std::uint8_t, 1, 2, 3, 0>;
using RGBA16 = PixelLayout<std::uint16_t, 0, 1, 2, 3>;
using RGBAFloat = PixelLayout<float, 0, 1, 2, 3>;

// Format codes of the layouts that effects take.
inline constexpr std::uint32_t formatRGBA8 = 0;
inline constexpr std::uint32_t formatARGB8 = 1;
inline constexpr std::uint32_t formatRGBA16 = 4;
inline constexpr std::uint32_t formatRGBAFloat = 9;

// Calls function(Layout{}) for the layout of the code; false, without a call, for the layouts that effects do not take.
template <class Function>
bool withLayout(std::uint32_t formatCode, Function&& function) {
  switch (formatCode) {
    case formatRGBA8:
      function(RGBA8{});
      return true;
    case formatARGB8:
      function(ARGB8{});
      return true;
    case formatRGBA16:
      function(RGBA16{});
      return true;
    case formatRGBAFloat:
      function(RGBAFloat{});
      return true;
    default:
      return false;
  }
}

}  // namespace vorto::effects
