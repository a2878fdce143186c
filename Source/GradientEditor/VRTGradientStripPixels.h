// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

// How the entries of a gradient table become the pixels of a strip.
enum VRTGradientRenderMode : std::int32_t {
  VRTGradientRenderPremultiplied = 1,  // color times alpha, with alpha: for drawing over the checkerboard
  VRTGradientRenderOpaque = 2,         // the color alone
  VRTGradientRenderAlpha = 3,          // opacity as grey, black where transparent
};

// Turns `count` entries of four bytes in the order alpha, red, green, blue in place into pixels in the order red,
// green, blue, alpha. Premultiplied colors are color * alpha / 255, rounded. Any other mode leaves the bytes as they
// are.
void VRTConvertGradientEntries(std::uint8_t* entries, std::uint32_t count, std::int32_t renderMode);
