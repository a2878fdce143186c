// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/TCPixelFormat.h"

#include <cstddef>
#include <cstdint>
#include <iterator>

// How the pixels of a format lie in memory: the one description from which sizes, orders and texts are taken, at
// compile time where a loop depends on them.
//
// Whether colors are premultiplied is not part of a layout: between patches they are, in files mostly not.
struct VortoPixelLayout {
  // Unsigned integers of 8 and 16 bits, and floats.
  enum class Number : std::uint8_t { Byte, Word, Half, Float };

  Number number;
  int channels;  // numbers that each pixel has in memory, without padding between pixels
  // Which of them; -1 where there is none. Luminance is all three colors.
  int red;
  int green;
  int blue;
  int alpha;
  bool isPaired;     // 4:2:2: U and V, of two pixels, take turns in the first number; Y is the second
  bool isExchanged;  // flows between patches
  const char* name;  // for messages, in English

  // Of one of its numbers.
  constexpr std::uint32_t bytesPerChannel() const {
    return number == Number::Byte ? 1 : number == Number::Float ? 4 : 2;
  }
  // Of all of them; in 4:2:2 a pixel has one of U and V.
  constexpr std::uint32_t bytesPerPixel() const { return bytesPerChannel() * static_cast<std::uint32_t>(channels); }
};

// By format code.
inline constexpr VortoPixelLayout kVortoPixelLayouts[] = {
    {VortoPixelLayout::Number::Byte, 4, 0, 1, 2, 3, false, true, "RGBA, 8-bit"},
    {VortoPixelLayout::Number::Byte, 4, 1, 2, 3, 0, false, true, "ARGB, 8-bit"},
    {VortoPixelLayout::Number::Byte, 2, 1, 1, 1, -1, true, false, "YCbCr 4:2:2, 8-bit"},
    {VortoPixelLayout::Number::Byte, 4, 1, 2, 3, -1, false, false, "ARGB, 8-bit, no alpha"},
    {VortoPixelLayout::Number::Word, 4, 0, 1, 2, 3, false, true, "RGBA, 16-bit"},
    {VortoPixelLayout::Number::Word, 3, 0, 1, 2, -1, false, false, "RGB, 16-bit"},
    {VortoPixelLayout::Number::Word, 2, 0, 0, 0, 1, false, false, "luminance and alpha, 16-bit"},
    {VortoPixelLayout::Number::Word, 1, 0, 0, 0, -1, false, false, "luminance, 16-bit"},
    {VortoPixelLayout::Number::Half, 4, 0, 1, 2, 3, false, false, "RGBA, half float"},
    {VortoPixelLayout::Number::Float, 4, 0, 1, 2, 3, false, true, "RGBA, float"},
};

// Any other code counts as ARGB8NoAlpha.
constexpr const VortoPixelLayout& TCPixelLayoutOf(VortoPixelFormat::Code code) {
  return kVortoPixelLayouts[code < std::size(kVortoPixelLayouts) ? code : VortoPixelFormat::ARGB8NoAlpha];
}
