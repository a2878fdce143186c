// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/YUV422.h"

#include <algorithm>

namespace vorto::kernels {
namespace {

std::uint8_t clamped(int v) {
  return static_cast<std::uint8_t>(std::clamp(v, 0, 255));
}

void storeARGB(std::uint8_t* argb, int Y, int U, int V) {
  const int y = Y - 16;
  const int u = U - 128;
  const int v = V - 128;
  argb[0] = 255;
  argb[1] = clamped((298 * y + 409 * v) >> 8);
  argb[2] = clamped((298 * y - 100 * u - 208 * v) >> 8);
  argb[3] = clamped((298 * y + 516 * u) >> 8);
}

// At most 235, so the limit of 255 that luma has is never met.
std::uint8_t luma(int r, int g, int b) {
  return static_cast<std::uint8_t>(((66 * r + 129 * g + 25 * b) >> 8) + 16);
}

}  // namespace

void convertYUVtoARGBScalar(std::uint8_t* argb, const std::uint8_t* yuv, std::size_t pairs) {
  for (std::size_t i = 0; i < pairs; ++i, yuv += 4, argb += 8) {
    const int U = yuv[0], Y0 = yuv[1], V = yuv[2], Y1 = yuv[3];
    storeARGB(argb, Y0, U, V);
    storeARGB(argb + 4, Y1, U, V);
  }
}

void convertARGBtoYUVScalar(std::uint8_t* yuv, const std::uint8_t* argb, std::size_t pairs) {
  for (std::size_t i = 0; i < pairs; ++i, argb += 8, yuv += 4) {
    const std::uint8_t Y0 = luma(argb[1], argb[2], argb[3]);
    const std::uint8_t Y1 = luma(argb[5], argb[6], argb[7]);
    const int r = (argb[1] + argb[5]) >> 1;
    const int g = (argb[2] + argb[6]) >> 1;
    const int b = (argb[3] + argb[7]) >> 1;
    yuv[0] = static_cast<std::uint8_t>(((-38 * r - 74 * g + 112 * b) >> 8) + 128);
    yuv[1] = Y0;
    yuv[2] = static_cast<std::uint8_t>(((112 * r - 94 * g - 18 * b) >> 8) + 128);
    yuv[3] = Y1;
  }
}

void convertLaggingYUVtoARGBScalar(std::uint8_t* argb, std::size_t step, const std::uint8_t* yuv, bool firstIsOdd,
                                   std::size_t count) {
  if (count == 0) return;
  const std::uint8_t* const pair = firstIsOdd ? yuv - 2 : yuv;
  int U = pair[0];
  int V = pair[2];
  bool odd = firstIsOdd;
  for (std::size_t i = 0; i < count; ++i, yuv += 2, argb += step, odd = !odd) {
    (odd ? V : U) = yuv[0];
    storeARGB(argb, yuv[1], U, V);
  }
}

}  // namespace vorto::kernels
