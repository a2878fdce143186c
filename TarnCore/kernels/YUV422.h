#pragma once

#include <cstddef>
#include <cstdint>

// Between 8-bit YCbCr 4:2:2 (U, Y0, V, Y1) and 8-bit ARGB, in pairs of pixels: 4 and 8 bytes. Video range after BT.601
// with eight bits of fraction; shifts are arithmetic. The buffers may start anywhere and must not overlap.
namespace vorto::kernels {

//   y = Y - 16, u = U - 128, v = V - 128
//   R = (298 y + 409 v) >> 8, G = (298 y - 100 u - 208 v) >> 8, B = (298 y + 516 u) >> 8, clamped to bytes; A = 255
void convertYUVtoARGB(std::uint8_t* argb, const std::uint8_t* yuv, std::size_t pairs);

//   Y = ((66 R + 129 G + 25 B) >> 8) + 16 of each pixel; of the means m = (first + second) >> 1 of the pair:
//   U = ((-38 mR - 74 mG + 112 mB) >> 8) + 128, V = ((112 mR - 94 mG - 18 mB) >> 8) + 128
void convertARGBtoYUV(std::uint8_t* yuv, const std::uint8_t* argb, std::size_t pairs);

}  // namespace vorto::kernels
