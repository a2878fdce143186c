// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

// What moves or flips whole bits of a pixel, whatever the pixel: a rule of 16 bytes that repeats over the memory. A
// pixel of 4, 8 or 16 bytes divides it, so one rule serves every layout.
namespace vorto::kernels {

struct BytePattern {
  alignas(16) std::uint8_t bytes[16];

  // The rule of one pixel, repeated.
  template <std::size_t n>
  static constexpr BytePattern ofPixel(const std::uint8_t (&pixel)[n]) {
    BytePattern pattern{};
    for (std::size_t i = 0; i < 16; ++i) pattern.bytes[i] = pixel[i % n];
    return pattern;
  }

  // The same for the order of bytes within a pixel.
  template <std::size_t n>
  static constexpr BytePattern ofOrder(const std::uint8_t (&pixel)[n]) {
    BytePattern pattern{};
    for (std::size_t i = 0; i < 16; ++i) pattern.bytes[i] = static_cast<std::uint8_t>(i / n * n + pixel[i % n]);
    return pattern;
  }
};

// data[i] ^= mask[i]
void complementBytes(std::uint8_t* data, std::size_t bytes, const BytePattern& mask);

// data[i] = value[i] where mask[i] is 255, as it is where mask[i] is 0.
void replaceBytes(std::uint8_t* data, std::size_t bytes, const BytePattern& mask, const BytePattern& value);

// destination[i] = source[order[i]], pixel by pixel from the first one on; the two may be the same or overlap. `bytes`
// is a whole number of pixels. `streamed` writes past the caches.
void shuffleBytes(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes, const BytePattern& order,
                  std::size_t pixelBytes, bool streamed);

// The definitions.
void complementBytesScalar(std::uint8_t* data, std::size_t bytes, const BytePattern& mask);
void replaceBytesScalar(std::uint8_t* data, std::size_t bytes, const BytePattern& mask, const BytePattern& value);
void shuffleBytesScalar(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes,
                        const BytePattern& order, std::size_t pixelBytes);

}  // namespace vorto::kernels
