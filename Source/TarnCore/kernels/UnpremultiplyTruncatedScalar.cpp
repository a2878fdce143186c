// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/UnpremultiplyTruncated.h"

#include <cstring>

namespace vorto::kernels {
namespace {

float normalized(std::uint8_t v) {
  return static_cast<float>(v * 0.00392156862745098);
}

float limited(float v) {
  if (v < 0) return 0;
  if (v > 1) return 1;
  return v;
}

std::uint8_t truncated(float v) {
  const float product = v * 255.0f;
  if (!(product > 0)) return 0;
  return product < 255 ? static_cast<std::uint8_t>(product) : 255;
}

}  // namespace

void unpremultiplyTruncatedScalar(std::uint8_t* destination, const std::uint8_t* source, std::size_t count,
                                  std::size_t step, const Background& background) {
  const float colors[3] = {background.red, background.green, background.blue};
  for (std::size_t i = 0; i < count; ++i, destination += step, source += step) {
    std::uint8_t pixel[4];
    std::memcpy(pixel, source, sizeof pixel);
    const float a = normalized(pixel[0]);
    pixel[0] = truncated(a);
    for (int k = 0; k < 3; ++k) {
      const float c = normalized(pixel[k + 1]);
      pixel[k + 1] = truncated(a > 0 ? limited((c - colors[k] * (1.0f - a)) / a) : colors[k]);
    }
    std::memcpy(destination, pixel, sizeof pixel);
  }
}

void unpremultiplyTruncatedInPlaceScalar(std::uint8_t* pixels, std::size_t count, std::size_t step) {
  for (std::size_t i = 0; i < count; ++i, pixels += step) {
    const float a = normalized(pixels[0]);
    if (!(a > 0)) continue;
    for (int k = 1; k < 4; ++k) pixels[k] = truncated(limited(normalized(pixels[k]) / a));
    pixels[0] = truncated(a);
  }
}

}  // namespace vorto::kernels
