// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/TCPixelLayout.h"

#include <array>
#include <cstdint>
#include <utility>

namespace vorto::effects {

// A layout that effects take, of four channels, for loops that are compiled for it.
template <class ChannelType, VortoPixelFormat::Code code>
struct PixelLayout {
  using Channel = ChannelType;
  static constexpr int kRed = TCPixelLayoutOf(code).red;
  static constexpr int kGreen = TCPixelLayoutOf(code).green;
  static constexpr int kBlue = TCPixelLayoutOf(code).blue;
  static constexpr int kAlpha = TCPixelLayoutOf(code).alpha;
  static constexpr int kChannels = TCPixelLayoutOf(code).channels;
  static_assert(TCPixelLayoutOf(code).isExchanged && sizeof(Channel) == TCPixelLayoutOf(code).bytesPerChannel());
};

using RGBA8 = PixelLayout<std::uint8_t, VortoPixelFormat::RGBA8>;
using ARGB8 = PixelLayout<std::uint8_t, VortoPixelFormat::ARGB8>;
using RGBA16 = PixelLayout<std::uint16_t, VortoPixelFormat::RGBA16>;
using RGBAFloat = PixelLayout<float, VortoPixelFormat::RGBAFloat>;

// A pixel of a layout, ready to be copied.
template <class Layout>
using LaidPixel = std::array<typename Layout::Channel, Layout::kChannels>;

// Calls function(Layout{}) for the layout of the code; false, without a call, for the layouts that effects do not take.
template <class Function>
bool withLayout(std::uint32_t formatCode, Function&& function) {
  switch (formatCode) {
    case VortoPixelFormat::RGBA8:
      function(RGBA8{});
      return true;
    case VortoPixelFormat::ARGB8:
      function(ARGB8{});
      return true;
    case VortoPixelFormat::RGBA16:
      function(RGBA16{});
      return true;
    case VortoPixelFormat::RGBAFloat:
      function(RGBAFloat{});
      return true;
    default:
      return false;
  }
}

}  // namespace vorto::effects
