// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Preview/PreviewPicture.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelLayout.h"

#include <QImage>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

// Pictures for the tests of the viewer.
namespace viewer_test {

using Color = std::array<double, 4>;  // premultiplied, 1 is full

template <class Sample = std::uint8_t>
host::MutableBitmapRef newBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t format,
                                 const std::vector<Sample>& samples = {}) {
  host::MutableBitmapRef bitmap = host::newBitmap(width, height, format, "test");
  std::copy(samples.begin(), samples.end(), reinterpret_cast<Sample*>(bitmap->data));
  return bitmap;
}

// A sample in memory as a part of full, and the other way around; integers are rounded.
inline double sampleAt(const VortoBitmap& bitmap, std::size_t index) {
  switch (TCPixelLayoutOf(bitmap.formatCode).number) {
    case VortoPixelLayout::Number::Byte:
      return bitmap.data[index] / 255.0;
    case VortoPixelLayout::Number::Word:
      return reinterpret_cast<const std::uint16_t*>(bitmap.data)[index] / 65535.0;
    default:
      return reinterpret_cast<const float*>(bitmap.data)[index];
  }
}
inline void setSample(VortoBitmap& bitmap, std::size_t index, double value) {
  switch (TCPixelLayoutOf(bitmap.formatCode).number) {
    case VortoPixelLayout::Number::Byte:
      bitmap.data[index] = static_cast<std::uint8_t>(std::lround(value * 255));
      break;
    case VortoPixelLayout::Number::Word:
      reinterpret_cast<std::uint16_t*>(bitmap.data)[index] = static_cast<std::uint16_t>(std::lround(value * 65535));
      break;
    default:
      reinterpret_cast<float*>(bitmap.data)[index] = static_cast<float>(value);
  }
}

inline Color colorAt(const VortoBitmap& bitmap, std::uint32_t x, std::uint32_t y) {
  const VortoPixelLayout& layout = TCPixelLayoutOf(bitmap.formatCode);
  const std::size_t first = 4 * (std::size_t{y} * bitmap.width + x);
  Color color{};
  const int order[] = {layout.red, layout.green, layout.blue, layout.alpha};
  for (std::size_t c = 0; c < 4; ++c) color[c] = sampleAt(bitmap, first + static_cast<std::size_t>(order[c]));
  return color;
}

// Premultiplied noise, a third of it opaque, a third transparent in parts; floats go below 0 and above 1.
inline host::MutableBitmapRef noise(std::uint32_t width, std::uint32_t height, std::uint32_t format,
                                    unsigned seed = 1) {
  host::MutableBitmapRef bitmap = newBitmap(width, height, format);
  const VortoPixelLayout& layout = TCPixelLayoutOf(format);
  const bool isFloat = layout.number == VortoPixelLayout::Number::Float;
  std::mt19937 random(seed);
  const auto part = [&] { return static_cast<double>(random() % 10001) / 10000; };
  for (std::size_t i = 0; i < std::size_t{width} * height; ++i) {
    const unsigned kind = random() % 3;
    const double alpha = kind == 0 ? 1 : kind == 1 ? part() : std::round(part());
    for (const int c : {layout.red, layout.green, layout.blue}) {
      setSample(*bitmap, 4 * i + static_cast<std::size_t>(c), alpha * (isFloat ? 1.4 * part() - 0.2 : part()));
    }
    setSample(*bitmap, 4 * i + static_cast<std::size_t>(layout.alpha), alpha);
  }
  return bitmap;
}

inline std::shared_ptr<host::PreviewPicture> pictureOf(const host::BitmapRef& result,
                                                       const host::BitmapRef& before = nullptr) {
  auto picture = std::make_shared<host::PreviewPicture>();
  picture->result = result;
  picture->before = before;
  picture->size = {result->width, result->height};
  picture->beforeSize = before ? host::PictureSize{before->width, before->height} : host::PictureSize{};
  picture->space = host::knownSpace(host::KnownSpace::SRgb, host::ColorSpace::Origin::Tagged);
  return picture;
}

}  // namespace viewer_test
