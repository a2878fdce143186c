// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorModule.h"
#include "Host/Pixels/OutputRows.h"

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace host {

// Pixels in memory: four samples each, red, green, blue and alpha; with alpha None the last is full.
struct PixelFormat {
  SampleType sample = SampleType::UInt8;
  AlphaKind alpha = AlphaKind::Premultiplied;
};

// Converts pixels from one space to another, without premultiplication, to premultiplied floats; nothing is cut. Where
// alpha is 0 premultiplied light is converted as it is, black stays black, and straight colors vanish.
class ColorConversion : public RowColors {
 public:
  // Loads the module for color. Throws Failure when there is no way between the spaces.
  ColorConversion(const ColorSpace& from, const ColorSpace& to);
  ColorConversion(ColorModule& module, const ColorSpace& from, const ColorSpace& to);
  explicit ColorConversion(std::unique_ptr<ColorTransform> transform) : transform_(std::move(transform)) {}

  // Source and target may be the same memory when both are floats.
  void convert(const std::byte* source, PixelFormat from, float* target, std::size_t pixels);

  void convertRow(const std::byte* source, SampleType sample, float* target, std::size_t pixels) override {
    convert(source, {sample, AlphaKind::Premultiplied}, target, pixels);
  }

 private:
  void findBlack(const float* band, std::size_t pixels);

  std::unique_ptr<ColorTransform> transform_;
  std::vector<std::size_t> black_;  // of the band: where its pixels begin that are black under no alpha
};

}  // namespace host
