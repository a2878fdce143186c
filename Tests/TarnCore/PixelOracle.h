// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

// What operations on pixels come to, pixel by pixel and channel by channel, written from their definitions without
// anything of the system: integers are divided, not shifted, halves are worked out from sign, exponent and fraction.
// Where pixels follow one another, each is read before it is written, in order.
namespace oracle {

using Bytes = std::vector<std::uint8_t>;
using To = std::uint8_t*;
using From = const std::uint8_t*;
using Count = std::size_t;

enum class Number { Byte, Word, Half, Float };
std::size_t bytesOf(Number number);
float read(Number number, From at);  // 0 to 1 for integers
void write(Number number, To at, float v);
// Whether two stored numbers are equal bit for bit, or neither is one.
bool areSame(Number number, From a, From b);
bool areSame(Number number, const Bytes& a, const Bytes& b);
// The integer of 0 to `largest` that a product rounds to: halves and what lies within 1e-7 below them upward; NaN is 0.
std::uint32_t rounded(double product, std::uint32_t largest);

struct Layout {
  Number number;
  int channels;
  int alpha;  // which channel; -1 for none. The others are red, green and blue in this order
  std::size_t pixelBytes() const { return bytesOf(number) * static_cast<std::size_t>(channels); }
  To channel(To pixel, int index) const { return pixel + bytesOf(number) * static_cast<std::size_t>(index); }
};
Layout layoutOf(std::uint32_t code);  // of a pixel format; unknown ones count as RGBA8
inline constexpr std::uint32_t kRGBA8 = 0, kARGB8 = 1, kRGBA16 = 4, kLuminanceAlpha16 = 6, kHalf = 8, kFloat = 9;

struct Color {
  float values[3];
};

// In place, on one pixel.
void complementAlpha(const Layout& layout, To pixel);
void setAlpha(const Layout& layout, To pixel, double alpha);
void alphaIntoColors(const Layout& layout, To pixel);
void rotate(const Layout& layout, To pixel, bool alphaFirst);
void premultiply(const Layout& layout, To pixel);
void unpremultiply(const Layout& layout, To pixel, const Color& background);
void unpremultiplyTruncated(To argb);

// From one pixel to another.
void unpremultiplyTruncated(To argb, From in, const Color& background);
void convert(const Layout& to, To out, const Layout& from, From in);
void pairToARGB(To argb, From yuv);
void pairToYUV(To yuv, From argb);

// A row of columns from 4:2:2 to ARGB, `step` bytes apart, in which each column replaces its own half of the chroma.
void laggingRow(To argb, std::size_t step, From yuv, bool firstIsOdd, Count count);

// The bin that a stored number counts in.
int bin(Number number, From at);

// Nearest neighbours: the source's pixel for a destination's, for sizes below ten million.
std::uint64_t sourceIndex(std::uint64_t i, std::uint64_t destination, std::uint64_t source);

// Pixels that an operation could get wrong: every pair of color and alpha bytes, every word with telling ones, and
// floats of every exponent, around every half step, of every kind that is no number.
const Bytes& domainOf(const Layout& layout);
const Bytes& yuvDomain();   // every Y with every U and every V, U with V
const Bytes& argbDomain();  // every two bytes as two channels of a pixel, and as one of two neighbours
Bytes randomBytes(std::size_t count, unsigned seed);

}  // namespace oracle
