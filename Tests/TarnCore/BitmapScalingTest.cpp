// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCBitmapScaling.h"

#include "TarnCore/TCColor.h"
#include "TarnCore/TCPixelFormat.h"
#include "Tests/TarnCore/KernelTesting.h"

#include <memory>

// Scaling, depth conversion and output conversions through the bitmap: which layout each code gets, what 4:2:2 becomes
// first, and in which order the output conversions run. What a pixel becomes is worked out with the pixel types.

namespace {

using kerneltesting::Bytes;
using kerneltesting::randomBytes;
using Format = VortoPixelFormat;
using Bitmap = std::unique_ptr<VortoBitmap>;

constexpr std::uint32_t kUnknown = 77;  // counts as RGBA8

Bitmap made(std::uint32_t width, std::uint32_t height, std::uint32_t code, unsigned seed = 1) {
  Bitmap bitmap(TCCreateBitmap(width, height, code == kUnknown ? Format::RGBA8 : code));
  bitmap->formatCode = code;
  bitmap->setData(randomBytes(bitmap->getSize(), seed).data());
  return bitmap;
}

Bytes pixelsOf(const VortoBitmap& bitmap) {
  return Bytes(bitmap.data, bitmap.data + bitmap.getSize());
}

std::size_t pixelBytes(const VortoBitmap& bitmap) {
  return bitmap.channels * bitmap.bitsPerChannel / 8;
}

// The source's pixel for every pixel of the destination, at ratios whose products are exact.
template <class Function>
void forPixels(const VortoBitmap& to, const VortoBitmap& from, Function function) {
  for (std::uint32_t i = 0; i < to.width * to.height; ++i) {
    const std::uint32_t row = i / to.width * from.height / to.height;
    function(i, row * from.width + i % to.width * from.width / to.width);
  }
}

Bytes expectedScale(const VortoBitmap& to, const std::uint8_t* from, const VortoBitmap& sizes) {
  const std::size_t step = pixelBytes(to);
  Bytes out(to.getSize());
  forPixels(to, sizes,
            [&](std::size_t i, std::size_t k) { std::copy_n(from + k * step, step, out.begin() + i * step); });
  return out;
}

TEST(BitmapScaling, TakesPixelsInTheDestinationsLayout) {
  for (const std::uint32_t code : {0u, 1u, 4u, 5u, 6u, 7u, 8u, 9u, kUnknown}) {
    for (const auto& [width, height] : {std::pair{6u, 4u}, {3u, 2u}, {24u, 9u}, {4u, 1u}}) {
      const Bitmap source = made(6, 4, code);
      const Bitmap destination = made(width, height, code, 2);
      destination->copyWithScaling(*source);
      EXPECT_EQ(pixelsOf(*destination), expectedScale(*destination, source->data, *source)) << code << " to " << width;
    }
  }
}

TEST(BitmapScaling, ChromaIsTurnedIntoColorsFirst) {
  const Bitmap source = made(8, 4, Format::YUV8);
  const Bitmap argb = made(8, 4, Format::ARGB8, 2);
  argb->copy(*source);
  for (const std::uint32_t code : {Format::ARGB8, Format::YUV8}) {  // the latter takes the colors' first bytes
    const Bitmap destination = made(4, 2, code, 3);
    destination->copyWithScaling(*source);
    EXPECT_EQ(pixelsOf(*destination), expectedScale(*destination, argb->data, *argb)) << code;
  }
  const Bitmap deep = made(4, 2, Format::RGBAFloat, 3);
  const Bitmap expected = made(4, 2, Format::RGBAFloat, 4);
  deep->copyWithScalingAndDepthConversion(*source);
  expected->copyWithScalingAndDepthConversion(*argb);
  EXPECT_EQ(pixelsOf(*deep), pixelsOf(*expected));
}

template <class To, class From>
void convertPixels(const VortoBitmap& to, const VortoBitmap& from, Bytes& out) {
  forPixels(to, from, [&](std::size_t i, std::size_t k) {
    From in;
    To pixel;
    std::memcpy(&in, from.data + k * sizeof in, sizeof in);
    pixel.setRedfn(in.getRedfn());
    pixel.setGreenfn(in.getGreenfn());
    pixel.setBluefn(in.getBluefn());
    pixel.setAlphafn(in.getAlphafn());
    std::memcpy(out.data() + i * sizeof pixel, &pixel, sizeof pixel);
  });
}

using ARGB8 = VortoPixel4<std::uint8_t, VortoPixelInfoARGB8>;
using RGBA8 = VortoPixel4<std::uint8_t, VortoPixelInfoRGBA8>;
using RGBA16 = VortoPixel4<std::uint16_t, VortoPixelInfoRGBA16>;
using RGBAHalf = VortoPixel4<half, VortoPixelInfoRGBAHalfFloat>;
using RGBAFloat = VortoPixel4<float, VortoPixelInfoRGBAFloat>;

template <class To>
Bytes converted(const VortoBitmap& to, const VortoBitmap& from) {
  Bytes out(to.getSize());
  switch (from.formatCode) {
    case Format::ARGB8:
      convertPixels<To, ARGB8>(to, from, out);
      break;
    case Format::RGBA16:
      convertPixels<To, RGBA16>(to, from, out);
      break;
    case Format::RGBAHalfFloat:
      convertPixels<To, RGBAHalf>(to, from, out);
      break;
    case Format::RGBAFloat:
      convertPixels<To, RGBAFloat>(to, from, out);
      break;
    default:
      convertPixels<To, RGBA8>(to, from, out);
  }
  return out;
}

TEST(BitmapScaling, ConvertsDepthByBothCodes) {
  for (const std::uint32_t from : {0u, 1u, 4u, 6u, 8u, 9u, kUnknown}) {  // LuminanceAlpha16 counts as RGBA8
    for (const std::uint32_t width : {6u, 3u, 12u}) {
      const Bitmap source = made(6, 4, from);
      const Bitmap argb = made(width, 2, Format::ARGB8, 2);
      const Bitmap words = made(width, 2, Format::RGBA16, 2);
      const Bitmap floats = made(width, 2, Format::RGBAFloat, 2);
      for (const Bitmap* destination : {&argb, &words, &floats}) {
        (*destination)->copyWithScalingAndDepthConversion(*source);
      }
      EXPECT_EQ(pixelsOf(*argb), converted<ARGB8>(*argb, *source)) << from;
      EXPECT_EQ(pixelsOf(*words), converted<RGBA16>(*words, *source)) << from;
      EXPECT_EQ(pixelsOf(*floats), converted<RGBAFloat>(*floats, *source)) << from;
    }
  }
  const Bitmap source = made(6, 4, Format::RGBA16);
  for (const std::uint32_t to : {0u, 2u, 5u, 6u, 7u, 8u, kUnknown}) {
    const Bitmap destination = made(3, 2, to, 2);
    const Bytes before = pixelsOf(*destination);
    destination->copyWithScalingAndDepthConversion(*source);
    EXPECT_EQ(pixelsOf(*destination), before) << to;
  }
}

TEST(BitmapScaling, TypedScalersTakeTheirArgumentsInTheirOrders) {
  VortoBitmapRGBA16 source(4, 4);
  VortoBitmapRGBA16 half(2, 2);
  VortoBitmapARGB8 bytes(2, 2);
  source.setData(randomBytes(source.getSize(), 5).data());
  scaleBitmap<VortoBitmapRGBA16, RGBA16>(&half, &source);
  EXPECT_EQ(pixelsOf(half), expectedScale(half, source.data, source));
  scaleAndDepthConvertBitmapToARGB8<VortoBitmapRGBA16, RGBA16>(&source, &bytes);
  EXPECT_EQ(pixelsOf(bytes), converted<ARGB8>(bytes, source));

  const Bytes before = pixelsOf(source);
  scaleBitmap<VortoBitmapRGBA16, RGBA16>(&source, &source);
  scaleBitmap<VortoBitmapRGBA16, RGBA16>(&source, nullptr);
  scaleAndDepthConvertBitmapToARGB8<VortoBitmapRGBA16, RGBA16>(nullptr, &bytes);
  EXPECT_EQ(pixelsOf(source), before);
}

TEST(BitmapScaling, WhatIsEmptyStaysAlone) {
  VortoBitmap empty;
  const Bitmap bitmap = made(4, 4, Format::ARGB8);
  const Bytes before = pixelsOf(*bitmap);
  for (const std::uint32_t code : {1u, 9u}) {
    empty.formatCode = code;
    bitmap->copyWithScaling(empty);
    bitmap->copyWithScalingAndDepthConversion(empty);
    empty.copyWithScaling(*bitmap);
    empty.copyWithScalingAndDepthConversion(*bitmap);
  }
  EXPECT_EQ(pixelsOf(*bitmap), before);
}

class OutputConversion : public testing::TestWithParam<unsigned> {
 protected:
  const bool unpremultiply = (GetParam() & 1) != 0;
  const bool opaque = (GetParam() & 2) != 0;
  const bool alphaToGray = (GetParam() & 4) != 0;
  const VortoColor background{0.2f, 0.7f, 0.4f, 1};

  void finish(VortoBitmap& expected) const {
    if (alphaToGray) {
      expected.duplicateAlphaToRGB();
    } else if (opaque) {
      expected.setConstantAlpha(1);
    }
  }
};

TEST_P(OutputConversion, TakesPremultiplicationOffAndThenFinishesAlpha) {
  const Bitmap source = made(9, 5, Format::ARGB8);
  const Bitmap expected = made(9, 5, Format::ARGB8, 2);
  const Bitmap copied = made(9, 5, Format::ARGB8, 3);
  unpremultiply ? expected->copyWithUnPreMult(*source, background) : expected->copy(*source);
  finish(*expected);
  copied->copyWithOutputConversion(*source, unpremultiply, opaque, alphaToGray, background);
  EXPECT_EQ(pixelsOf(*copied), pixelsOf(*expected));

  for (const std::uint32_t code : {0u, 1u, 4u, 8u, 9u}) {  // in place in every layout, with rounding
    const Bitmap bitmap = made(9, 5, code);
    const Bitmap alike = made(9, 5, code);
    if (unpremultiply) alike->unpremultiply(background);
    finish(*alike);
    bitmap->doOutputConversion(unpremultiply, opaque, alphaToGray, background);
    EXPECT_EQ(pixelsOf(*bitmap), pixelsOf(*alike)) << code;
  }
}

INSTANTIATE_TEST_SUITE_P(EveryChoice, OutputConversion, testing::Range(0u, 8u));

TEST(BitmapScaling, OutputWithoutUnpremultiplicationClones) {
  const Bitmap source = made(7, 3, Format::RGBA16);
  VortoBitmap output;
  output.copyWithOutputConversion(*source, false, false, false, VortoColor::BLACK);
  EXPECT_EQ(output.width, 7u);
  EXPECT_EQ(output.formatCode, Format::RGBA16);
  EXPECT_EQ(pixelsOf(output), pixelsOf(*source));
}

}  // namespace
