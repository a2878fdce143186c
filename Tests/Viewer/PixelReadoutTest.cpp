// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/PixelReadout.h"

#include "Host/Viewer/ReadoutLine.h"
#include "TarnCore/TCPixelFormat.h"
#include "Tests/Support/EnglishTexts.h"
#include "Tests/Viewer/ViewerFixture.h"

#include <gtest/gtest.h>

namespace {

using host::AlphaKind;
using host::Channels;
using host::Depth;
using host::PixelReadout;
using viewer_test::newBitmap;
using viewer_test::pictureOf;

std::shared_ptr<host::PictureInfo> fileOf(Depth depth, Channels channels, AlphaKind alpha) {
  auto info = std::make_shared<host::PictureInfo>();
  info->depth = depth;
  info->channels = channels;
  info->alpha = alpha;
  return info;
}

}  // namespace

TEST(PixelReadout, BeforeIsWhatTheFileHolds) {
  struct Case {
    Depth depth;
    Channels channels;
    AlphaKind alpha;
    host::BitmapRef bitmap;  // of the file, two pixels
    std::vector<double> second;
  };
  const Case cases[] = {
      {Depth::Bits8,
       Channels::RGBA,
       AlphaKind::Straight,
       newBitmap<std::uint8_t>(2, 1, VortoPixelFormat::RGBA8, {9, 9, 9, 9, 250, 17, 3, 51}),
       {250, 17, 3, 51}},
      {Depth::Bits8,
       Channels::RGB,
       AlphaKind::None,
       newBitmap<std::uint8_t>(2, 1, VortoPixelFormat::RGBA8, {9, 9, 9, 255, 250, 17, 3, 255}),
       {250, 17, 3}},
      {Depth::Bits16,
       Channels::GrayAlpha,
       AlphaKind::Straight,
       newBitmap<std::uint16_t>(2, 1, VortoPixelFormat::RGBA16, {0, 0, 0, 0, 40001, 40001, 40001, 123}),
       {40001, 123}},
      {Depth::Bits16,
       Channels::Gray,
       AlphaKind::None,
       newBitmap<std::uint16_t>(2, 1, VortoPixelFormat::RGBA16, {0, 0, 0, 0, 65535, 65535, 65535, 65535}),
       {65535}},
      {Depth::Half,
       Channels::RGB,
       AlphaKind::None,
       newBitmap<float>(2, 1, VortoPixelFormat::RGBAFloat, {0, 0, 0, 1, 0.5f, -2.25f, 70, 1}),
       {0.5, -2.25, 70}},
      {Depth::Float,
       Channels::RGBA,
       AlphaKind::Premultiplied,
       newBitmap<float>(2, 1, VortoPixelFormat::RGBAFloat, {0, 0, 0, 1, 0.5f, 0.25f, 0, 0.5f}),
       {0.5, 0.25, 0, 0.5}},
  };
  for (const Case& wanted : cases) {
    // Another one flows.
    const auto picture = pictureOf(newBitmap(2, 1, VortoPixelFormat::RGBA8), newBitmap(2, 1, VortoPixelFormat::RGBA8));
    picture->fileBefore = wanted.bitmap;
    picture->fileInfo = fileOf(wanted.depth, wanted.channels, wanted.alpha);
    const auto readout = readPixel(*picture, 1, 0);
    ASSERT_TRUE(readout && readout->before);
    const auto& before = *readout->before;
    EXPECT_EQ(std::vector<double>(before.samples.begin(), before.samples.begin() + before.count), wanted.second);
    EXPECT_EQ(before.depth, wanted.depth);
    EXPECT_EQ(before.alpha, wanted.alpha);
    EXPECT_EQ(before.isOutside(), wanted.depth == Depth::Half);
    // The file's own picture is what flows.
    picture->before = wanted.bitmap;
    picture->fileBefore = nullptr;
    EXPECT_EQ(readPixel(*picture, 1, 0)->before->samples, before.samples);
  }
}

TEST(PixelReadout, AfterIsWithoutPremultiplicationInItsDepth) {
  const auto after = [](const host::BitmapRef& bitmap) { return *readPixel(*pictureOf(bitmap), 0, 0)->after; };
  const auto bytes = after(newBitmap<std::uint8_t>(1, 1, VortoPixelFormat::RGBA8, {50, 25, 100, 100}));
  EXPECT_EQ(bytes.samples, (std::array<double, 4>{128, 64, 255, 100}));
  EXPECT_EQ(bytes.asParts()[0], 128 / 255.0);
  const auto argb = after(newBitmap<std::uint8_t>(1, 1, VortoPixelFormat::ARGB8, {255, 1, 2, 3}));
  EXPECT_EQ(argb.samples, (std::array<double, 4>{1, 2, 3, 255}));
  const auto words = after(newBitmap<std::uint16_t>(1, 1, VortoPixelFormat::RGBA16, {1000, 0, 3, 32768}));
  EXPECT_EQ(words.samples, (std::array<double, 4>{2000, 0, 6, 32768}));
  const auto floats = after(newBitmap<float>(1, 1, VortoPixelFormat::RGBAFloat, {0.75f, 0.125f, -0.5f, 0.5f}));
  EXPECT_EQ(floats.samples, (std::array<double, 4>{1.5, 0.25, -1, 0.5}));
  EXPECT_TRUE(floats.isOutside());
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_TRUE(after(newBitmap<float>(1, 1, VortoPixelFormat::RGBAFloat, {nan, 0, 0, 1})).isOutside());
}

TEST(PixelReadout, QuickPicturesAreSaidToBe) {
  // Two columns stand for eight; the input has four.
  const auto picture = pictureOf(newBitmap<std::uint8_t>(2, 1, VortoPixelFormat::RGBA8, {1, 1, 1, 255, 2, 2, 2, 255}),
                                 newBitmap<std::uint8_t>(4, 1, VortoPixelFormat::RGBA8,
                                                         {10, 0, 0, 255, 11, 0, 0, 255, 12, 0, 0, 255, 13, 0, 0, 255}));
  picture->size = {8, 3};
  picture->isFull = false;
  for (const auto& [x, after, before] :
       {std::tuple(0, 1, 10), std::tuple(3, 1, 11), std::tuple(4, 2, 12), std::tuple(7, 2, 13)}) {
    const auto readout = readPixel(*picture, x, 2);
    ASSERT_TRUE(readout);
    EXPECT_TRUE(readout->isApproximate);
    EXPECT_EQ(readout->after->samples[0], after) << x;
    EXPECT_EQ(readout->before->samples[0], before) << x;
  }
  for (const auto& [x, y] : {std::pair(-1, 0), std::pair(8, 0), std::pair(0, 3), std::pair(0, -1)}) {
    EXPECT_FALSE(readPixel(*picture, x, y));
  }
  picture->result = nullptr;
  picture->before = nullptr;
  const auto nothing = readPixel(*picture, 0, 0);
  EXPECT_TRUE(nothing && !nothing->before && !nothing->after);
}

TEST(PixelReadout, ReadsAsText) {
  readEnglishTexts();
  const auto picture = pictureOf(newBitmap<float>(1, 1, VortoPixelFormat::RGBAFloat, {0.1f, 12.5f, 0, 1}),
                                 newBitmap<std::uint8_t>(1, 1, VortoPixelFormat::RGBA8, {1, 2, 3, 255}));
  picture->fileInfo = fileOf(Depth::Bits8, Channels::RGB, AlphaKind::None);
  EXPECT_EQ(readoutText(*readPixel(*picture, 0, 0)).toStdString(),
            "x 0  y 0  Before 1 2 3  Result 0.100000 12.50000 0.000000 1.000000 (outside 0 to 1)");
  EXPECT_EQ(host::sampleText(65504, Depth::Half), "65504");
  EXPECT_EQ(host::sampleText(1e9, Depth::Float), "1e+09");
}
