// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/BytePatterns.h"

#include <cstring>

namespace vorto::kernels {

void complementBytesScalar(std::uint8_t* data, std::size_t bytes, const BytePattern& mask) {
  for (std::size_t i = 0; i < bytes; ++i) data[i] = data[i] ^ mask.bytes[i % 16];
}

void replaceBytesScalar(std::uint8_t* data, std::size_t bytes, const BytePattern& mask, const BytePattern& value) {
  for (std::size_t i = 0; i < bytes; ++i) {
    if (mask.bytes[i % 16]) data[i] = value.bytes[i % 16];
  }
}

void shuffleBytesScalar(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes,
                        const BytePattern& order, std::size_t pixelBytes) {
  for (std::size_t i = 0; i < bytes; i += pixelBytes) {
    std::uint8_t pixel[16];
    std::memcpy(pixel, source + i, pixelBytes);
    for (std::size_t k = 0; k < pixelBytes; ++k) destination[i + k] = pixel[order.bytes[k]];
  }
}

}  // namespace vorto::kernels
