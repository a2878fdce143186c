// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCPixel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

namespace {

template <class T>
T fromBits(std::uint32_t bits) {
  T value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

// The float nearest to n / d, found in long double.
float quotient(std::uint32_t n, std::uint32_t d) {
  return static_cast<float>(static_cast<long double>(n) / static_cast<long double>(d));
}

// A half's value from its sign, exponent and fraction.
float valueOfHalf(std::uint32_t bits) {
  const int exponent = static_cast<int>(bits >> 10 & 31);
  const double fraction = bits & 1023;
  const double magnitude = exponent == 31  ? (fraction == 0 ? std::numeric_limits<double>::infinity() : std::nan(""))
                           : exponent == 0 ? std::ldexp(fraction, -24)
                                           : std::ldexp(1024 + fraction, exponent - 25);
  return static_cast<float>(bits & 0x8000 ? -magnitude : magnitude);
}

template <class Pixel>
void expectOrder(int red, int green, int blue, int alpha) {
  Pixel pixel{};
  const auto expectStored = [&pixel](int index) {
    const int count = static_cast<int>(std::size(pixel.values));
    for (int i = 0; i < count; ++i) EXPECT_EQ(static_cast<float>(pixel.values[i]) != 0, i == index) << i;
    pixel = {};
  };
  pixel.setRedfn(1);
  EXPECT_EQ(pixel.getRedfn(), 1);
  expectStored(red);
  pixel.setGreenfn(1);
  EXPECT_EQ(pixel.getGreenfn(), 1);
  expectStored(green);
  pixel.setBluefn(1);
  EXPECT_EQ(pixel.getBluefn(), 1);
  expectStored(blue);
  pixel.setAlphafn(1);
  EXPECT_EQ(pixel.getAlphafn(), 1);
  expectStored(alpha);
  EXPECT_EQ(pixel.getAlphafn(), alpha < 0 ? 1 : 0);
}

TEST(Pixel, ChannelsLieInTheOrderOfTheLayout) {
  expectOrder<VortoPixel4<std::uint8_t, VortoPixelInfoRGBA8>>(0, 1, 2, 3);
  expectOrder<VortoPixel4<std::uint8_t, VortoPixelInfoARGB8>>(1, 2, 3, 0);
  expectOrder<VortoPixelYUV<std::uint8_t, VortoPixelInfoYUV8>>(1, 1, 1, -1);
  expectOrder<VortoPixel4<std::uint16_t, VortoPixelInfoRGBA16>>(0, 1, 2, 3);
  expectOrder<VortoPixel3<std::uint16_t, VortoPixelInfoRGB16>>(0, 1, 2, -1);
  expectOrder<VortoPixel2<std::uint16_t, VortoPixelInfoLuminanceAlpha16>>(0, 0, 0, 1);
  expectOrder<VortoPixel1<std::uint16_t, VortoPixelInfoLuminance16>>(0, 0, 0, -1);
  expectOrder<VortoPixel4<half, VortoPixelInfoRGBAHalfFloat>>(0, 1, 2, 3);
  expectOrder<VortoPixel4<float, VortoPixelInfoRGBAFloat>>(0, 1, 2, 3);
}

TEST(Pixel, RecordsAreAsWideAsTheirPixels) {
  EXPECT_EQ(sizeof(VortoPixel4<std::uint8_t, VortoPixelInfoRGBA8>), 4u);
  EXPECT_EQ(sizeof(VortoPixelYUV<std::uint8_t, VortoPixelInfoYUV8>), 2u);
  EXPECT_EQ(sizeof(VortoPixel3<std::uint16_t, VortoPixelInfoRGB16>), 6u);
  EXPECT_EQ(sizeof(VortoPixel4<half, VortoPixelInfoRGBAHalfFloat>), 8u);
  EXPECT_EQ(sizeof(VortoPixel4<float, VortoPixelInfoRGBAFloat>), 16u);
}

TEST(Pixel, EveryStoredValueReadsAsItsQuotientAndComesBack) {
  VortoPixel4<std::uint8_t, VortoPixelInfoARGB8> bytes{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    bytes.values[2] = static_cast<std::uint8_t>(i);
    ASSERT_EQ(bytes.getGreenfn(), quotient(i, 255)) << i;
    bytes.setBluefn(bytes.getGreenfn());
    ASSERT_EQ(bytes.values[3], i);
    ASSERT_EQ(denormalized(i / 255.0), i);
  }
  VortoPixel3<std::uint16_t, VortoPixelInfoRGB16> words{};
  for (std::uint32_t i = 0; i < 65536; ++i) {
    words.values[0] = static_cast<std::uint16_t>(i);
    ASSERT_EQ(words.getRedfn(), quotient(i, 65535)) << i;
    words.setBluefn(words.getRedfn());
    ASSERT_EQ(words.values[2], i);
    ASSERT_EQ(denormalized<std::uint16_t>(i / 65535.0), i);
  }
}

TEST(Pixel, EveryHalfReadsAsItsValueAndComesBack) {
  VortoPixel4<half, VortoPixelInfoRGBAHalfFloat> pixel{};
  for (std::uint32_t i = 0; i < 65536; ++i) {
    pixel.values[1].setBits(static_cast<unsigned short>(i));
    const float expected = valueOfHalf(i);
    const float actual = pixel.getGreenfn();
    if (std::isnan(expected)) {
      ASSERT_TRUE(std::isnan(actual)) << i;
      continue;
    }
    ASSERT_EQ(actual, expected) << i;
    pixel.setAlphafn(actual);
    ASSERT_EQ(pixel.values[3].bits(), i);
  }
  VortoVector4<half> group{};
  for (int i = 0; i < 4; ++i) group.values[i].setBits(static_cast<unsigned short>(0x7C01 + i));  // signalling NaNs
  const VortoVector4<half> copied = group;
  for (int i = 0; i < 4; ++i) EXPECT_EQ(copied.values[i].bits(), 0x7C01 + i);
}

// The sum of the bias is done in long double here and rounded to double as the definition's two sums are.
template <class T>
std::uint32_t expectedStored(double product) {
  if (std::isnan(product)) return 0;
  const double most = std::numeric_limits<T>::max();
  const double half = static_cast<double>(static_cast<long double>(product) + 0.5L);
  const double biased = static_cast<double>(static_cast<long double>(half) + static_cast<long double>(1e-7));
  if (biased < 1) return 0;
  if (biased >= most) return static_cast<std::uint32_t>(most);
  return static_cast<std::uint32_t>(biased);  // positive, so that truncation is floor
}

TEST(Pixel, FloatsAreStoredWithTheBiasOverTheWholeRange) {
  for (std::uint64_t bits = 0; bits < 0x100000000; bits += 4093) {
    const auto v = fromBits<float>(static_cast<std::uint32_t>(bits));
    ASSERT_EQ(denormalizef(v), expectedStored<std::uint8_t>(255.0f * v)) << v;
    ASSERT_EQ(denormalizef<std::uint16_t>(v), expectedStored<std::uint16_t>(65535.0f * v)) << v;
    ASSERT_EQ(denormalized(v), expectedStored<std::uint8_t>(255.0 * v)) << v;
    ASSERT_EQ(denormalized<std::uint16_t>(v), expectedStored<std::uint16_t>(65535.0 * v)) << v;
  }
  // Around every halfway point, where the rounding turns.
  for (int i = 0; i < 255; ++i) {
    float v = static_cast<float>((i + 0.5) / 255.0);
    for (int step = 0; step < 5; ++step) v = std::nextafter(v, -1.0f);
    for (int step = 0; step < 10; ++step, v = std::nextafter(v, 2.0f))
      ASSERT_EQ(denormalizef(v), expectedStored<std::uint8_t>(255.0f * v)) << v;
  }
  EXPECT_EQ(denormalizef(0.5f), 128);
  EXPECT_EQ(denormalized((127.5 - 5e-8) / 255), 128) << "within 1e-7 below a half";
  EXPECT_EQ(denormalized((127.5 - 2e-7) / 255), 127);
  for (const float v : {-INFINITY, -0.2f, -0.0f, NAN}) EXPECT_EQ(denormalizef(v), 0);
  for (const float v : {INFINITY, 1.3f, 3e38f}) EXPECT_EQ(denormalizef<std::uint16_t>(v), 65535);
}

}  // namespace
