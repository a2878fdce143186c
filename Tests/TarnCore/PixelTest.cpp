// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCPixel.h"

#include "Tests/TarnCore/PixelOracle.h"

namespace {

// Every setter reaches its own channel alone, and its getter reads it back.
template <class Pixel>
void expectOrder(const std::array<int, 4>& order) {
  using P = Pixel;
  void (P::*const setters[])(float) = {&P::setRedfn, &P::setGreenfn, &P::setBluefn, &P::setAlphafn};
  float (P::*const getters[])() const = {&P::getRedfn, &P::getGreenfn, &P::getBluefn, &P::getAlphafn};
  for (std::size_t k = 0; k < 4; ++k) {
    Pixel pixel{};
    EXPECT_EQ((pixel.*getters[k])(), order[k] < 0 ? 1 : 0);
    (pixel.*setters[k])(1);
    EXPECT_EQ((pixel.*getters[k])(), 1);
    for (int i = 0; i < static_cast<int>(std::size(pixel.values)); ++i) {
      EXPECT_EQ(static_cast<float>(pixel.values[i]) != 0, i == order[k]) << i;
    }
  }
  EXPECT_EQ(sizeof(Pixel), sizeof(Pixel::values));
}

TEST(Pixel, ChannelsLieInTheOrderOfTheLayout) {
  expectOrder<VortoPixel4<std::uint8_t, VortoPixelInfoRGBA8>>({0, 1, 2, 3});
  expectOrder<VortoPixel4<std::uint8_t, VortoPixelInfoARGB8>>({1, 2, 3, 0});
  expectOrder<VortoPixelYUV<std::uint8_t, VortoPixelInfoYUV8>>({1, 1, 1, -1});
  expectOrder<VortoPixel4<std::uint16_t, VortoPixelInfoRGBA16>>({0, 1, 2, 3});
  expectOrder<VortoPixel3<std::uint16_t, VortoPixelInfoRGB16>>({0, 1, 2, -1});
  expectOrder<VortoPixel2<std::uint16_t, VortoPixelInfoLuminanceAlpha16>>({0, 0, 0, 1});
  expectOrder<VortoPixel1<std::uint16_t, VortoPixelInfoLuminance16>>({0, 0, 0, -1});
  expectOrder<VortoPixel4<half, VortoPixelInfoRGBAHalfFloat>>({0, 1, 2, 3});
  expectOrder<VortoPixel4<float, VortoPixelInfoRGBAFloat>>({0, 1, 2, 3});
}

template <class Pixel, class Stored>
void expectEveryValue(oracle::Number number) {
  for (std::uint32_t i = 0; i < 1u << 8 * sizeof(Stored); ++i) {
    const auto stored = static_cast<Stored>(i);
    Pixel pixel{};
    std::memcpy(static_cast<void*>(&pixel.values[1]), &stored, sizeof stored);
    const float expected = oracle::read(number, reinterpret_cast<const std::uint8_t*>(&stored));
    const float actual = pixel.getGreenfn();
    ASSERT_TRUE(actual == expected || (std::isnan(actual) && std::isnan(expected))) << i;
    if (std::isnan(expected)) continue;
    pixel.setBluefn(actual);
    ASSERT_EQ(std::memcmp(&pixel.values[2], &stored, sizeof stored), 0) << i;
  }
}

TEST(Pixel, EveryStoredValueReadsAsItsQuotientOrHalfAndComesBack) {
  expectEveryValue<VortoPixel4<std::uint8_t, VortoPixelInfoRGBA8>, std::uint8_t>(oracle::Number::Byte);
  expectEveryValue<VortoPixel3<std::uint16_t, VortoPixelInfoRGB16>, std::uint16_t>(oracle::Number::Word);
  expectEveryValue<VortoPixel4<half, VortoPixelInfoRGBAHalfFloat>, std::uint16_t>(oracle::Number::Half);
  VortoVector4<half> group{};
  for (int i = 0; i < 4; ++i) group.values[i].setBits(static_cast<unsigned short>(0x7C01 + i));  // signalling NaNs
  const VortoVector4<half> copied = group;
  for (int i = 0; i < 4; ++i) EXPECT_EQ(copied.values[i].bits(), 0x7C01 + i);
}

TEST(Pixel, NumbersAreStoredWithTheBiasOverTheWholeRange) {
  const oracle::Bytes& floats = oracle::domainOf(oracle::layoutOf(oracle::kFloat));
  for (std::size_t i = 0; i < floats.size(); i += 4 * 3) {
    const float v = oracle::read(oracle::Number::Float, &floats[i]);
    ASSERT_EQ(denormalizef(v), oracle::rounded(255.0f * v, 255)) << v;
    ASSERT_EQ(denormalizef<std::uint16_t>(v), oracle::rounded(65535.0f * v, 65535)) << v;
    ASSERT_EQ(denormalized(v), oracle::rounded(255.0 * v, 255)) << v;
    ASSERT_EQ(denormalized<std::uint16_t>(v), oracle::rounded(65535.0 * v, 65535)) << v;
  }
  EXPECT_EQ(denormalizef(0.5f), 128);
  EXPECT_EQ(denormalized((127.5 - 5e-8) / 255), 128) << "within 1e-7 below a half";
  EXPECT_EQ(denormalized((127.5 - 2e-7) / 255), 127);
}

}  // namespace
