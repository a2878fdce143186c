// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Premultiply.h"

namespace vorto::kernels {
namespace {

std::uint8_t multiplied(std::uint8_t color, std::uint8_t alpha) {
  return static_cast<std::uint8_t>(color * alpha / 255);
}

void premultiply(std::uint8_t* pixels, std::size_t count, int alpha, int firstColor) {
  for (std::size_t i = 0; i < count; ++i, pixels += 4) {
    for (int k = firstColor; k < firstColor + 3; ++k) pixels[k] = multiplied(pixels[k], pixels[alpha]);
  }
}

}  // namespace

void premultiplyRGBA8Scalar(std::uint8_t* pixels, std::size_t count) {
  premultiply(pixels, count, 3, 0);
}
void premultiplyARGB8Scalar(std::uint8_t* pixels, std::size_t count) {
  premultiply(pixels, count, 0, 1);
}

}  // namespace vorto::kernels
