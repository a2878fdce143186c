// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCPixel.h"
#include "TarnCore/kernels/Unpremultiply.h"

#include <cstring>

namespace vorto::kernels {
namespace {

template <class Pixel>
void unpremultiply(Pixel& pixel, const Background& background) {
  const float a = pixel.getAlphafn();
  if (a > 0) {
    const float share = 1.0f - a;
    const float inverse = 1.0f / a;
    pixel.setRedfn((pixel.getRedfn() - background.red * share) * inverse);
    pixel.setGreenfn((pixel.getGreenfn() - background.green * share) * inverse);
    pixel.setBluefn((pixel.getBluefn() - background.blue * share) * inverse);
  } else {
    pixel.setRedfn(background.red);
    pixel.setGreenfn(background.green);
    pixel.setBluefn(background.blue);
  }
}

template <class Pixel>
void unpremultiplyAll(std::uint8_t* pixels, std::size_t count, const Background& background) {
  for (std::size_t i = 0; i < count; ++i, pixels += sizeof(Pixel)) {
    Pixel pixel;
    std::memcpy(&pixel, pixels, sizeof pixel);
    unpremultiply(pixel, background);
    std::memcpy(pixels, &pixel, sizeof pixel);
  }
}

}  // namespace

void unpremultiplyRGBA8Scalar(std::uint8_t* pixels, std::size_t count, const Background& background) {
  unpremultiplyAll<VortoPixel4<std::uint8_t, VortoPixelInfoRGBA8>>(pixels, count, background);
}

void unpremultiplyARGB8Scalar(std::uint8_t* pixels, std::size_t count, const Background& background) {
  unpremultiplyAll<VortoPixel4<std::uint8_t, VortoPixelInfoARGB8>>(pixels, count, background);
}

void unpremultiplyRGBA16Scalar(std::uint8_t* pixels, std::size_t count, const Background& background) {
  unpremultiplyAll<VortoPixel4<std::uint16_t, VortoPixelInfoRGBA16>>(pixels, count, background);
}

void unpremultiplyRGBAHalfScalar(std::uint8_t* pixels, std::size_t count, const Background& background) {
  unpremultiplyAll<VortoPixel4<half, VortoPixelInfoRGBAHalfFloat>>(pixels, count, background);
}

void unpremultiplyRGBAFloatScalar(std::uint8_t* pixels, std::size_t count, const Background& background) {
  unpremultiplyAll<VortoPixel4<float, VortoPixelInfoRGBAFloat>>(pixels, count, background);
}

}  // namespace vorto::kernels
