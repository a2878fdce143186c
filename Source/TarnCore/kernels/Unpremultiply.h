// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

namespace vorto::kernels {

struct Background {
  float red, green, blue;
};

// Whether the vectors serve a background. They convert products to 32-bit integers, which colors far outside 0..1 would
// overflow; NaN has no place in them; and what is all but 0 could be mistaken for the nothing that they take for 0.
// Other backgrounds are for the definitions.
bool fitsVectors(const Background& background);

// Takes premultiplication off `count` pixels that were composited against a background. With everything normalised to
// 0..1 and in single precision, a pixel of alpha a > 0 gets c' = (c - background x (1 - a)) x (1 / a) for each of its
// colors c, any other pixel (a NaN alpha too) the background. Integers are rounded as the pixel types round them and
// clamped, floats are kept as they come. Alpha stays. The pixels may lie at any address.
void unpremultiplyRGBA8(std::uint8_t* pixels, std::size_t count, const Background& background);
void unpremultiplyARGB8(std::uint8_t* pixels, std::size_t count, const Background& background);
void unpremultiplyRGBA16(std::uint8_t* pixels, std::size_t count, const Background& background);
void unpremultiplyRGBAHalf(std::uint8_t* pixels, std::size_t count, const Background& background);
void unpremultiplyRGBAFloat(std::uint8_t* pixels, std::size_t count, const Background& background);

// The definitions.
void unpremultiplyRGBA8Scalar(std::uint8_t* pixels, std::size_t count, const Background& background);
void unpremultiplyARGB8Scalar(std::uint8_t* pixels, std::size_t count, const Background& background);
void unpremultiplyRGBA16Scalar(std::uint8_t* pixels, std::size_t count, const Background& background);
void unpremultiplyRGBAHalfScalar(std::uint8_t* pixels, std::size_t count, const Background& background);
void unpremultiplyRGBAFloatScalar(std::uint8_t* pixels, std::size_t count, const Background& background);

}  // namespace vorto::kernels
