#include "TarnCore/kernels/YUV422.h"

#include <algorithm>

namespace vorto::kernels {

namespace {

std::uint8_t byte(int value) {
  return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

void storeARGB(std::uint8_t* argb, int y, int u, int v) {
  argb[0] = 255;
  argb[1] = byte((298 * y + 409 * v) >> 8);
  argb[2] = byte((298 * y - 100 * u - 208 * v) >> 8);
  argb[3] = byte((298 * y + 516 * u) >> 8);
}

std::uint8_t luma(const std::uint8_t* argb) {
  return static_cast<std::uint8_t>(((66 * argb[1] + 129 * argb[2] + 25 * argb[3]) >> 8) + 16);  // 235 at most
}

}  // namespace

void convertYUVtoARGB(std::uint8_t* argb, const std::uint8_t* yuv, std::size_t pairs) {
  for (std::size_t i = 0; i < pairs; ++i, argb += 8, yuv += 4) {
    const int u = yuv[0] - 128;
    const int v = yuv[2] - 128;
    storeARGB(argb, yuv[1] - 16, u, v);
    storeARGB(argb + 4, yuv[3] - 16, u, v);
  }
}

void convertARGBtoYUV(std::uint8_t* yuv, const std::uint8_t* argb, std::size_t pairs) {
  for (std::size_t i = 0; i < pairs; ++i, argb += 8, yuv += 4) {
    const int r = (argb[1] + argb[5]) >> 1;
    const int g = (argb[2] + argb[6]) >> 1;
    const int b = (argb[3] + argb[7]) >> 1;
    const std::uint8_t y1 = luma(argb + 4);
    yuv[1] = luma(argb);
    yuv[3] = y1;
    yuv[0] = static_cast<std::uint8_t>(((-38 * r - 74 * g + 112 * b) >> 8) + 128);
    yuv[2] = static_cast<std::uint8_t>(((112 * r - 94 * g - 18 * b) >> 8) + 128);
  }
}

}  // namespace vorto::kernels
