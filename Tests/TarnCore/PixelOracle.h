// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <bit>
#include <numeric>

// What operations on pixels come to, pixel by pixel and channel by channel, written from their definitions without
// anything of the system: integers are divided, not shifted, halves are worked out from sign, exponent and fraction.
// Where pixels follow one another, each is read before it is written, in order.
namespace oracle {

using Bytes = std::vector<std::uint8_t>;
using To = std::uint8_t*;
using From = const std::uint8_t*;
using Count = std::size_t;

enum class Number { Byte, Word, Half, Float };
inline std::size_t bytesOf(Number number) {
  return number == Number::Byte ? 1 : number == Number::Float ? 4 : 2;
}

struct Layout {
  Number number;
  int channels;
  int alpha;  // which channel; -1 for none. The others are red, green and blue in this order
  std::size_t pixelBytes() const { return bytesOf(number) * static_cast<std::size_t>(channels); }
  To channel(To pixel, int index) const { return pixel + bytesOf(number) * static_cast<std::size_t>(index); }
};
inline constexpr std::uint32_t kRGBA8 = 0, kARGB8 = 1, kRGBA16 = 4, kLuminanceAlpha16 = 6, kHalf = 8, kFloat = 9;

struct Color {
  float values[3];
};

template <class T>
T load(From at) {
  T value;
  std::memcpy(&value, at, sizeof value);
  return value;
}
template <class T>
void store(To at, T value) {
  std::memcpy(at, &value, sizeof value);
}

inline float valueOfHalf(std::uint16_t bits) {
  const int exponent = bits >> 10 & 31;
  const double fraction = bits & 1023;
  const double magnitude = exponent == 31  ? (fraction == 0 ? INFINITY : NAN)
                           : exponent == 0 ? std::ldexp(fraction, -24)
                                           : std::ldexp(1024 + fraction, exponent - 25);
  return static_cast<float>(bits & 0x8000 ? -magnitude : magnitude);
}

// The nearest half, the even one of two; steps of the exponent's size are counted.
inline std::uint16_t nearestHalf(float v) {
  const std::uint32_t sign = std::signbit(v) ? 0x8000 : 0;
  if (std::isnan(v)) return 0x7E00;
  if (std::abs(v) >= 65520) return static_cast<std::uint16_t>(sign | 0x7C00);
  const int exponent = v == 0 ? -14 : std::max(std::ilogb(v), -14);
  const double steps = std::nearbyint(std::ldexp(std::abs(static_cast<double>(v)), 10 - exponent));
  return static_cast<std::uint16_t>(sign + static_cast<std::uint32_t>((exponent + 14) * 1024 + steps));
}

inline std::uint32_t largestOf(Number number) {
  return number == Number::Byte ? 255 : 65535;
}

inline std::uint8_t truncated(float v) {
  const float product = 255 * v;
  return product > 0 ? static_cast<std::uint8_t>(std::min(std::floor(product), 255.0f)) : 0;
}

// v / 256, rounded down.
inline int shifted(int v) {
  return (v - (v % 256 + 256) % 256) / 256;
}

inline void storeARGB(To argb, int Y, int U, int V) {
  const int y = 298 * (Y - 16), u = U - 128, v = V - 128;
  const int colors[3] = {shifted(y + 409 * v), shifted(y - 100 * u - 208 * v), shifted(y + 516 * u)};
  argb[0] = 255;
  for (int k = 0; k < 3; ++k) argb[k + 1] = static_cast<std::uint8_t>(std::clamp(colors[k], 0, 255));
}

// 0 to 1 for integers.
inline float read(Number number, From at) {
  if (number == Number::Float) return load<float>(at);
  if (number == Number::Half) return valueOfHalf(load<std::uint16_t>(at));
  return static_cast<float>((number == Number::Byte ? *at : load<std::uint16_t>(at)) /
                            static_cast<double>(largestOf(number)));
}

// The integer of 0 to `largest` that a product rounds to: halves and what lies within 1e-7 below them upward; NaN is 0.
inline std::uint32_t rounded(double product, std::uint32_t largest) {
  const double biased = product + 0.5 + 1e-7;
  if (!(biased >= 1)) return 0;
  return biased >= largest ? largest : static_cast<std::uint32_t>(biased);  // positive: cut off is rounded down
}

inline void write(Number number, To at, float v) {
  if (number == Number::Float) return store(at, v);
  const std::uint32_t largest = largestOf(number);
  const std::uint32_t value =
      number == Number::Half ? nearestHalf(v) : rounded(static_cast<float>(largest) * v, largest);
  std::memcpy(at, &value, bytesOf(number));
}

// Whether two stored numbers are equal bit for bit, or neither is one.
inline bool areSame(Number number, From a, From b) {
  if (std::memcmp(a, b, bytesOf(number)) == 0) return true;
  return number >= Number::Half && std::isnan(read(number, a)) && std::isnan(read(number, b));
}

inline bool areSame(Number number, const Bytes& a, const Bytes& b) {
  for (std::size_t i = 0; i + bytesOf(number) <= a.size(); i += bytesOf(number)) {
    if (!areSame(number, &a[i], &b[i])) return false;
  }
  return a.size() == b.size();
}

// Of a pixel format; unknown ones count as RGBA8.
inline Layout layoutOf(std::uint32_t code) {
  static constexpr Layout layouts[] = {
      {Number::Byte, 4, 3},  {Number::Byte, 4, 0}, {Number::Byte, 2, -1}, {Number::Byte, 4, 3}, {Number::Word, 4, 3},
      {Number::Word, 3, -1}, {Number::Word, 2, 1}, {Number::Word, 1, -1}, {Number::Half, 4, 3}, {Number::Float, 4, 3}};
  return layouts[code < std::size(layouts) ? code : 0];
}

// In place, on one pixel.

inline void complementAlpha(const Layout& layout, To pixel) {
  const To alpha = layout.channel(pixel, layout.alpha);
  if (layout.number >= Number::Half) return write(layout.number, alpha, 1 - read(layout.number, alpha));
  for (std::size_t i = 0; i < bytesOf(layout.number); ++i) alpha[i] = static_cast<std::uint8_t>(255 - alpha[i]);
}

inline void setAlpha(const Layout& layout, To pixel, double alpha) {
  const To at = layout.channel(pixel, layout.alpha);
  if (layout.number >= Number::Half) return write(layout.number, at, static_cast<float>(alpha));
  const std::uint32_t value = rounded(largestOf(layout.number) * alpha, largestOf(layout.number));
  std::memcpy(at, &value, bytesOf(layout.number));
}

inline void alphaIntoColors(const Layout& layout, To pixel) {
  for (int k = 0; k < layout.channels; ++k) {
    std::copy_n(layout.channel(pixel, layout.alpha), bytesOf(layout.number), layout.channel(pixel, k));
  }
}

inline void rotate(const Layout& layout, To pixel, bool alphaFirst) {
  std::rotate(pixel, layout.channel(pixel, alphaFirst ? 3 : 1), pixel + layout.pixelBytes());
}

inline void premultiply(const Layout& layout, To pixel) {
  for (int k = 0; k < 4; ++k) {
    if (k != layout.alpha) pixel[k] = static_cast<std::uint8_t>(pixel[k] * pixel[layout.alpha] / 255);
  }
}

inline void unpremultiply(const Layout& layout, To pixel, const Color& background) {
  const float a = read(layout.number, layout.channel(pixel, layout.alpha));
  for (int k = 0, color = 0; k < 4; ++k) {
    if (k == layout.alpha) continue;
    const float under = background.values[color++];
    const To at = layout.channel(pixel, k);
    const float through = under * (1 - a);
    const float inverse = 1 / a;
    write(layout.number, at, a > 0 ? (read(layout.number, at) - through) * inverse : under);
  }
}

// From one pixel to another.

inline void unpremultiplyTruncated(To argb, From in, const Color& background) {
  const std::uint8_t pixel[4] = {in[0], in[1], in[2], in[3]};
  const float a = read(Number::Byte, pixel);
  argb[0] = truncated(a);
  for (int k = 1; k < 4; ++k) {
    const float under = background.values[k - 1];
    const float c = read(Number::Byte, pixel + k);
    argb[k] = truncated(a > 0 ? std::clamp((c - under * (1 - a)) / a, 0.0f, 1.0f) : under);
  }
}

inline void unpremultiplyTruncated(To argb) {
  if (argb[0] != 0) unpremultiplyTruncated(argb, argb, {{0, 0, 0}});
}

inline void convert(const Layout& to, To out, const Layout& from, From in) {
  const int first[2] = {to.alpha == 0 ? 1 : 0, from.alpha == 0 ? 1 : 0};  // red
  for (int k = 0; k < 4; ++k) {
    const From at = in + bytesOf(from.number) * static_cast<std::size_t>((first[1] + k) % 4);
    write(to.number, to.channel(out, (first[0] + k) % 4), read(from.number, at));
  }
}

inline void pairToARGB(To argb, From yuv) {
  const int U = yuv[0], first = yuv[1], V = yuv[2], second = yuv[3];
  storeARGB(argb, first, U, V);
  storeARGB(argb + 4, second, U, V);
}

inline void pairToYUV(To yuv, From argb) {
  int mean[3];
  int luma[2] = {16 * 256, 16 * 256};
  for (int k = 0; k < 3; ++k) {
    mean[k] = (argb[k + 1] + argb[k + 5]) / 2;
    for (int i = 0; i < 2; ++i) luma[i] += std::array{66, 129, 25}[static_cast<std::size_t>(k)] * argb[4 * i + k + 1];
  }
  const int U = shifted(-38 * mean[0] - 74 * mean[1] + 112 * mean[2]) + 128;
  const int V = shifted(112 * mean[0] - 94 * mean[1] - 18 * mean[2]) + 128;
  for (const auto& [at, v] : {std::pair{0, U}, {1, luma[0] / 256}, {2, V}, {3, luma[1] / 256}}) {
    yuv[at] = static_cast<std::uint8_t>(v);
  }
}

// A row of columns from 4:2:2 to ARGB, `step` bytes apart, in which each column replaces its own half of the chroma.
inline void laggingRow(To argb, std::size_t step, From yuv, bool firstIsOdd, Count count) {
  if (count == 0) return;
  const From pair = firstIsOdd ? yuv - 2 : yuv;
  int chroma[2] = {pair[0], pair[2]};
  for (Count i = 0; i < count; ++i) {
    chroma[(i + (firstIsOdd ? 1 : 0)) % 2] = yuv[2 * i];
    storeARGB(argb + i * step, yuv[2 * i + 1], chroma[0], chroma[1]);
  }
}

// The bin that a stored number counts in.
inline int bin(Number number, From at) {
  if (number == Number::Byte) return std::min<int>(*at, 254);
  if (number == Number::Word) return std::min((load<std::uint16_t>(at) + 128) / 257, 254);  // never a half
  return static_cast<int>(rounded(load<float>(at) / 0.003921569f, 254));
}

// Nearest neighbours: the source's pixel for a destination's, for sizes below ten million.
inline std::uint64_t sourceIndex(std::uint64_t i, std::uint64_t destination, std::uint64_t source) {
  return i * source / destination;
}

inline Bytes randomBytes(std::size_t count, unsigned seed) {
  std::mt19937 generator(seed);
  Bytes bytes(count);
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>(generator());
  return bytes;
}

using Numbers = std::vector<std::uint32_t>;

// Each color with each alpha, as stored numbers.
inline void appendPixels(Bytes& bytes, const Layout& layout, const Numbers& colors, const Numbers& alphas) {
  const std::size_t n = colors.size();
  for (const std::uint32_t alpha : alphas) {
    for (std::size_t i = 0; i < n; ++i) {
      const std::uint32_t values[] = {colors[i], colors[(i + n / 3) % n], colors[(i + n / 2) % n]};
      for (int k = 0, next = 0; k < 4; ++k) {
        const std::uint32_t value = k == layout.alpha ? alpha : values[next++];
        const auto* stored = reinterpret_cast<const std::uint8_t*>(&value);
        bytes.insert(bytes.end(), stored, stored + bytesOf(layout.number));
      }
    }
  }
}

// Floats of every exponent, and around every half step of bytes, words and bins.
inline Numbers tellingFloats() {
  Numbers all;
  for (std::uint32_t exponent = 0; exponent < 512; ++exponent) {
    for (const std::uint32_t m : {0u, 1u, 0x200000u, 0x400000u, 0x400001u, 0x555555u, 0x7FFFFFu}) {
      all.push_back(exponent << 23 | m);
    }
  }
  return all;
}
inline Numbers floatSteps() {
  Numbers all;
  for (const double step : {0.5 / 255, 0.5 / 65535, 0.5 * 0.003921569f}) {
    for (int i = 0; i * step <= 1.01; ++i) {
      const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(i * step));
      for (std::uint32_t near = 0; near < 9; ++near) all.push_back(bits + near - 4);
    }
  }
  return all;
}

inline Bytes makeDomain(const Layout& layout) {
  Bytes bytes;
  Numbers every(layout.number == Number::Byte ? 256 : 65536);
  std::iota(every.begin(), every.end(), 0u);
  if (layout.number == Number::Byte) {
    appendPixels(bytes, layout, every, every);
  } else if (layout.number == Number::Float) {
    const Numbers telling = tellingFloats();
    Numbers alphas = {0x3F800000, 0x3F000000, 0xBF800000, 0x40000000};
    for (std::size_t i = 0; i < telling.size(); i += 15) alphas.push_back(telling[i]);
    appendPixels(bytes, layout, telling, alphas);
    appendPixels(bytes, layout, floatSteps(), {0x3F800000u});
  } else {
    const Numbers some = {0,      1,      2,      127,    255,    0x3800, 0x3C00, 0x7BFF, 0x7C00,
                          0x7C01, 0x7E00, 0x8000, 0x8001, 0xFBFF, 0xFFFF, 0x03FF, 40000,  12345};
    appendPixels(bytes, layout, every, some);
    appendPixels(bytes, layout, some, every);
  }
  return bytes;
}

// Random bytes, then what the function makes of every pair of bytes.
template <class Function>
Bytes pairs(unsigned seed, Function function) {
  Bytes made = randomBytes(std::size_t{1} << 18, seed);
  for (int i = 0; i < 65536; ++i) {
    const auto bytes = function(static_cast<std::uint8_t>(i / 256), static_cast<std::uint8_t>(i));
    made.insert(made.end(), bytes.begin(), bytes.end());
  }
  return made;
}

using Byte = std::uint8_t;

// Pixels that an operation could get wrong: every pair of color and alpha bytes, every word with telling ones, and
// floats of every exponent, around every half step, of every kind that is no number.
inline const Bytes& domainOf(const Layout& layout) {
  static std::map<std::pair<Number, int>, Bytes> made;
  Bytes& bytes = made[{layout.number, layout.alpha}];
  if (bytes.empty()) bytes = makeDomain(layout);
  return bytes;
}

// Every Y with every U and every V, U with V.
inline const Bytes& yuvDomain() {
  static const Bytes bytes = pairs(11, [](Byte x, Byte y) {
    return std::array<Byte, 12>{x, y, 99, static_cast<Byte>(~y), 160, y, x, 7, x, 128, y, 255};
  });
  return bytes;
}

// Every two bytes as two channels of a pixel, and as one of two neighbours.
inline const Bytes& argbDomain() {
  static const Bytes bytes = pairs(12, [](Byte x, Byte y) {
    return std::array<Byte, 24>{1, x, y, 255, 2, y, 0, x, 3, 255, x, y, 4, x, 255, y, 0, 0, x, 0, 9, y, y, y};
  });
  return bytes;
}

}  // namespace oracle
