// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorModule.h"
#include "Host/ImageFiles/PictureTypes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace host {

// Pixels in memory: four samples each, red, green, blue and alpha; with alpha None the last is full.
struct PixelFormat {
  SampleType sample = SampleType::UInt8;
  AlphaKind alpha = AlphaKind::Premultiplied;
};

// Converts pixels from one space to another, in floats and without premultiplication, and rounds once. Where alpha is 0
// the colors stay as they are (multiplied with it where straight ones become premultiplied).
class ColorConversion {
 public:
  // Loads the module for color. Throws Failure when there is no way between the spaces.
  ColorConversion(const ColorSpace& from, const ColorSpace& to);
  ColorConversion(ColorModule& module, const ColorSpace& from, const ColorSpace& to);

  // Of integers that result, those outside their range are cut, NaN to 0; returns how many pixels that befell (by more
  // than half a unit). Source and target may be the same memory when their sample types are the same.
  std::uint64_t convert(const std::byte* source, PixelFormat from, std::byte* target, PixelFormat to,
                        std::size_t pixels);

 private:
  struct Transparent {
    std::size_t at;
    std::array<float, 3> color;
  };
  void keepTransparent(bool isMultiplied, std::size_t pixels);

  std::unique_ptr<ColorTransform> transform_;
  std::vector<float> band_;
  std::vector<Transparent> transparent_;  // of the band
};

}  // namespace host
