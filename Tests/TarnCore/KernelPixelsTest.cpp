// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/AlphaComplement.h"
#include "TarnCore/kernels/BytePatterns.h"
#include "TarnCore/kernels/Memory.h"
#include "TarnCore/kernels/Premultiply.h"
#include "TarnCore/kernels/Unpremultiply.h"
#include "TarnCore/kernels/UnpremultiplyTruncated.h"
#include "Tests/TarnCore/KernelTesting.h"

#include <bit>
#include <cmath>
#include <functional>
#include <limits>

// Operations in place: the fast forms against the definitions, bit for bit, for every instruction set of the machine;
// and the definitions against the formulas, written once more.

namespace {

using namespace vorto::kernels;
using namespace kerneltesting;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

const Background kBackgrounds[] = {
    {0, 0, 0},
    {1, 1, 1},
    {0.5f, 0.25f, 0.75f},
    {0.2f, 0.7f, 0.9f},
    {0.1f, 1 / 3.0f, 0.013f},
    {-0.5f, 1.5f, -0.0f},
    {8192, -8192, 3},
    {9000, -1e30f, 1e38f},
    {kInfinity, 1, -kInfinity},
    {kNaN, 0.5f, 0},
};

struct InPlace {
  const char* name;
  std::size_t pixelBytes;
  std::function<void(std::uint8_t*, std::size_t)> fast, definition;
};

std::vector<InPlace> inPlaceOperations() {
  static constexpr BytePattern mask = BytePattern::ofPixel({0, 0, 255, 255});
  static constexpr BytePattern value = BytePattern::ofPixel({1, 2, 3, 4});
  static constexpr BytePattern order = BytePattern::ofOrder({6, 7, 0, 1, 2, 3, 4, 5});
  static const Background background = kBackgrounds[3];
  using Pixels = std::uint8_t*;
  using Count = std::size_t;
  return {
      {"complement", 4, [](Pixels p, Count n) { complementBytes(p, 4 * n, mask); },
       [](Pixels p, Count n) { complementBytesScalar(p, 4 * n, mask); }},
      {"replace", 4, [](Pixels p, Count n) { replaceBytes(p, 4 * n, mask, value); },
       [](Pixels p, Count n) { replaceBytesScalar(p, 4 * n, mask, value); }},
      {"shuffle", 8, [](Pixels p, Count n) { shuffleBytes(p, p, 8 * n, order, 8, false); },
       [](Pixels p, Count n) { shuffleBytesScalar(p, p, 8 * n, order, 8); }},
      {"swap", 8, [](Pixels p, Count n) { swapBytes(p, p + 4 * n, 4 * n); },
       [](Pixels p, Count n) { swapBytesScalar(p, p + 4 * n, 4 * n); }},
      {"premultiply RGBA8", 4, premultiplyRGBA8, premultiplyRGBA8Scalar},
      {"premultiply ARGB8", 4, premultiplyARGB8, premultiplyARGB8Scalar},
      {"complement half", 8, complementAlphaHalf, complementAlphaHalfScalar},
      {"complement float", 16, complementAlphaFloat, complementAlphaFloatScalar},
      {"unpremultiply RGBA8", 4, [](Pixels p, Count n) { unpremultiplyRGBA8(p, n, background); },
       [](Pixels p, Count n) { unpremultiplyRGBA8Scalar(p, n, background); }},
      {"unpremultiply ARGB8", 4, [](Pixels p, Count n) { unpremultiplyARGB8(p, n, background); },
       [](Pixels p, Count n) { unpremultiplyARGB8Scalar(p, n, background); }},
      {"unpremultiply RGBA16", 8, [](Pixels p, Count n) { unpremultiplyRGBA16(p, n, background); },
       [](Pixels p, Count n) { unpremultiplyRGBA16Scalar(p, n, background); }},
      {"unpremultiply half", 8, [](Pixels p, Count n) { unpremultiplyRGBAHalf(p, n, background); },
       [](Pixels p, Count n) { unpremultiplyRGBAHalfScalar(p, n, background); }},
      {"unpremultiply float", 16, [](Pixels p, Count n) { unpremultiplyRGBAFloat(p, n, background); },
       [](Pixels p, Count n) { unpremultiplyRGBAFloatScalar(p, n, background); }},
      {"truncated", 4, [](Pixels p, Count n) { unpremultiplyTruncatedInPlace(p, n, 4); },
       [](Pixels p, Count n) { unpremultiplyTruncatedInPlaceScalar(p, n, 4); }},
      {"truncated copy", 4, [](Pixels p, Count n) { unpremultiplyTruncated(p, p, n, 4, background); },
       [](Pixels p, Count n) { unpremultiplyTruncatedScalar(p, p, n, 4, background); }},
  };
}

TEST(KernelPixels, EveryWidthAndOffset) {
  for (const InPlace& operation : inPlaceOperations()) {
    SCOPED_TRACE(operation.name);
    onEveryTarget([&] {
      for (std::size_t width = 0; width <= 130; ++width) {
        const Bytes bytes = randomBytes(width * operation.pixelBytes, static_cast<unsigned>(width));
        for (const std::size_t offset : {0, 1, 4, 63}) {
          ASSERT_NO_FATAL_FAILURE(compareInPlace(
              bytes, offset, [&](std::uint8_t* p) { operation.fast(p, width); },
              [&](std::uint8_t* p) { operation.definition(p, width); }));
        }
      }
    });
  }
}

// Every color against every alpha: each color channel meets every pair.
Bytes everyPairOfBytes(int alphaIndex) {
  Bytes bytes;
  for (int alpha = 0; alpha < 256; ++alpha) {
    for (int color = 0; color < 256; ++color) {
      std::uint8_t pixel[4] = {};
      const int values[3] = {color, 255 - color, color ^ 0x55};
      for (int k = 0, next = 0; k < 4; ++k)
        pixel[k] = static_cast<std::uint8_t>(k == alphaIndex ? alpha : values[next++]);
      append(bytes, pixel);
    }
  }
  return bytes;
}

TEST(KernelPixels, EveryPairOfBytes) {
  const Bytes rgba = everyPairOfBytes(3);
  const Bytes argb = everyPairOfBytes(0);
  onEveryTarget([&] {
    compareInPlace(
        rgba, 0, [](auto* p) { premultiplyRGBA8(p, 65536); }, [](auto* p) { premultiplyRGBA8Scalar(p, 65536); });
    compareInPlace(
        argb, 0, [](auto* p) { premultiplyARGB8(p, 65536); }, [](auto* p) { premultiplyARGB8Scalar(p, 65536); });
    compareInPlace(
        argb, 0, [](auto* p) { unpremultiplyTruncatedInPlace(p, 65536, 4); },
        [](auto* p) { unpremultiplyTruncatedInPlaceScalar(p, 65536, 4); });
    for (const Background& b : kBackgrounds) {
      compareInPlace(
          rgba, 0, [&](auto* p) { unpremultiplyRGBA8(p, 65536, b); },
          [&](auto* p) { unpremultiplyRGBA8Scalar(p, 65536, b); });
      compareInPlace(
          argb, 0, [&](auto* p) { unpremultiplyARGB8(p, 65536, b); },
          [&](auto* p) { unpremultiplyARGB8Scalar(p, 65536, b); });
      compareInPlace(
          argb, 0, [&](auto* p) { unpremultiplyTruncated(p, p, 65536, 4, b); },
          [&](auto* p) { unpremultiplyTruncatedScalar(p, p, 65536, 4, b); });
    }
  });
}

// Backgrounds at random, and those whose colors land next to a half when they are seen through.
TEST(KernelPixels, EveryPairOfBytesAgainstManyBackgrounds) {
  const Bytes rgba = everyPairOfBytes(3);
  std::mt19937 generator(7);
  std::uniform_real_distribution<float> anywhere(-0.25f, 1.25f);
  for (int i = 0; i < 40; ++i) {
    const float grey = static_cast<float>(i) / 255;
    const Background b = i % 2 ? Background{anywhere(generator), anywhere(generator), anywhere(generator)}
                               : Background{grey, std::nextafter(grey, 1.0f), 0.5f / 255 * static_cast<float>(i)};
    compareInPlace(
        rgba, 0, [&](auto* p) { unpremultiplyRGBA8(p, 65536, b); },
        [&](auto* p) { unpremultiplyRGBA8Scalar(p, 65536, b); });
  }
}

// Four-channel pixels of colors and alphas, each color with each alpha.
template <class T>
Bytes pixelsOf(const std::vector<T>& colors, const std::vector<T>& alphas) {
  std::vector<T> channels;
  for (const T alpha : alphas) {
    for (std::size_t i = 0; i < colors.size(); ++i) {
      const std::size_t n = colors.size();
      for (const T channel : {colors[i], colors[(i + n / 3) % n], colors[(i + n / 2) % n], alpha}) {
        channels.push_back(channel);
      }
    }
  }
  Bytes bytes(channels.size() * sizeof(T));
  std::memcpy(bytes.data(), channels.data(), bytes.size());
  return bytes;
}

std::vector<std::uint16_t> everyWord() {
  std::vector<std::uint16_t> words(65536);
  for (std::size_t i = 0; i < words.size(); ++i) words[i] = static_cast<std::uint16_t>(i);
  return words;
}

TEST(KernelPixels, EveryWord) {
  const std::vector<std::uint16_t> some = {0,      1,      2,      3,      127,    255,    0x3800, 0x3C00, 0x4000,
                                           0x7BFF, 0x7C00, 0x7C01, 0x7E00, 0x7FFF, 0x8000, 0x8001, 0xBC00, 0xFBFF,
                                           0xFC00, 0xFE01, 0xFFFE, 0xFFFF, 0x03FF, 0x0400, 40000,  12345};
  for (const Bytes& bytes : {pixelsOf(everyWord(), some), pixelsOf(some, everyWord())}) {
    const std::size_t count = bytes.size() / 8;
    onEveryTarget([&] {
      compareInPlace(
          bytes, 0, [&](auto* p) { complementAlphaHalf(p, count); },
          [&](auto* p) { complementAlphaHalfScalar(p, count); });
      for (const Background& b : {kBackgrounds[0], kBackgrounds[3], kBackgrounds[5], kBackgrounds[6]}) {
        compareInPlace(
            bytes, 0, [&](auto* p) { unpremultiplyRGBA16(p, count, b); },
            [&](auto* p) { unpremultiplyRGBA16Scalar(p, count, b); });
        compareInPlace(
            bytes, 0, [&](auto* p) { unpremultiplyRGBAHalf(p, count, b); },
            [&](auto* p) { unpremultiplyRGBAHalfScalar(p, count, b); });
      }
    });
  }
}

TEST(KernelPixels, TellingFloats) {
  const std::vector<std::uint32_t> all = tellingFloats();
  std::vector<std::uint32_t> alphas;
  for (std::size_t i = 0; i < all.size(); i += 5) alphas.push_back(all[i]);
  for (const float v : {0.0f, 1.0f, 0.5f, -1.0f, 2.0f}) alphas.push_back(std::bit_cast<std::uint32_t>(v));
  const Bytes bytes = pixelsOf(all, alphas);
  const std::size_t count = bytes.size() / 16;
  onEveryTarget([&] {
    compareInPlace(
        bytes, 0, [&](auto* p) { complementAlphaFloat(p, count); },
        [&](auto* p) { complementAlphaFloatScalar(p, count); });
    for (const Background& b : {kBackgrounds[0], kBackgrounds[3], kBackgrounds[8], kBackgrounds[9]}) {
      compareInPlace(
          bytes, 0, [&](auto* p) { unpremultiplyRGBAFloat(p, count, b); },
          [&](auto* p) { unpremultiplyRGBAFloatScalar(p, count, b); });
    }
  });
}

// The formula once more, with everything it says done in its own steps.

int roundedTo255(float v) {
  const float product = 255.0f * v;
  int n = 0;
  while (n < 255 && static_cast<double>(product) + 0.5 + 1e-7 >= n + 1) ++n;
  return n;
}

TEST(KernelPixels, UnpremultiplyFollowsTheFormula) {
  for (const Background& b : {kBackgrounds[0], kBackgrounds[3], kBackgrounds[5]}) {
    Bytes bytes = everyPairOfBytes(0);
    const Bytes before = bytes;
    unpremultiplyARGB8(bytes.data(), 65536, b);
    const float background[4] = {0, b.red, b.green, b.blue};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      const float a = static_cast<float>(before[i & ~std::size_t{3}]) / 255;
      const float c = static_cast<float>(before[i]) / 255;
      const float through = background[i % 4] * (1 - a);
      const float straight = (c - through) * (1 / a);
      const int expected = i % 4 == 0 ? before[i] : roundedTo255(a > 0 ? straight : background[i % 4]);
      ASSERT_EQ(bytes[i], expected) << "pixel " << i / 4 << ", channel " << i % 4;
    }
  }
}

}  // namespace
