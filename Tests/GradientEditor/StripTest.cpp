// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradient.h"
#include "GradientEditor/VRTGradientGutterAlpha.h"
#include "GradientEditor/VRTGradientGutterRGB.h"
#include "Platform/TarnKit/NSBitmapImageRep.h"
#include "Ports/VRTObjects.h"
#include "TarnCore/TCColor.h"
#include "Tests/TarnKit/Pictures.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <set>

namespace {

using Pixel = std::array<int, 4>;  // red, green, blue, alpha

int truncated(float component) {
  return static_cast<int>(static_cast<double>(component) * 255.0);
}

int times(int color, int alpha) {
  return static_cast<int>(std::lround(color * alpha / 255.0));
}

Pixel converted(int a, int r, int g, int b, int mode) {
  switch (mode) {
    case 1:
      return {times(r, a), times(g, a), times(b, a), a};
    case 2:
      return {r, g, b, 255};
    case 3:
      return {a, a, a, 255};
    default:
      return {a, r, g, b};
  }
}

// One pixel of a strip `count` wide, from the color at its place.
Pixel expectedPixel(const VRTChannelGradient& channel, int i, int count, int mode) {
  VortoColor color;
  channel.getColor(0, count > 1 ? static_cast<double>(i) / (count - 1) : 0.0, &color);
  return converted(truncated(color.alpha), truncated(color.c1), truncated(color.c2), truncated(color.c3), mode);
}

Pixel pixelOf(const NSBitmapImageRep& bitmap, std::uint32_t x, std::uint32_t y) {
  const std::uint8_t* p = bitmap.bitmapData() + y * bitmap.bytesPerRow() + x * 4;
  return {p[0], p[1], p[2], p[3]};
}

std::shared_ptr<VRTGradientPort> portWithGradient() {
  const auto port = std::make_shared<VRTGradientPort>("inputGradient");
  const auto value = VRTGradient::gradient();
  VRTChannelGradient& channel = *value->kxChannelGradient();
  channel.rgbFolder.addSample(0.9, 0.2, 0.1, 0.3, 0.25, VRTGradientLinear);
  channel.rgbFolder.addSample(0.1, 0.7, 0.4, 0.62, 0.5, VRTGradientConstant);
  channel.alphaFolder.addSample(0.15, 0.4, 0.7, VRTGradientSmooth);
  channel.alphaFolder.addSample(0.8, 1.0, 0.5, VRTGradientSmooth);
  port->setValue(value);
  return port;
}

VRTChannelGradient& channelOf(VRTGradientPort& port) {
  return *VRTGradientChannelOfPort(&port);
}

}  // namespace

TEST(StripPixels, ConvertsAsTheTableSays) {
  EXPECT_EQ(converted(128, 255, 0, 64, 1), (Pixel{128, 0, 32, 128}));
  for (const int mode : {0, 1, 2, 3, 4}) {
    for (int i = 0; i < 65536; ++i) {
      const int a = i / 256, c = i % 256;
      std::uint8_t entries[8] = {
          std::uint8_t(a), std::uint8_t(c), std::uint8_t(255 - c), std::uint8_t(c / 2), 9, 9, 9, 9};
      VRTConvertGradientEntries(entries, 1, mode);
      ASSERT_EQ((Pixel{entries[0], entries[1], entries[2], entries[3]}), converted(a, c, 255 - c, c / 2, mode)) << mode;
      ASSERT_EQ(entries[4] + entries[7], 18) << "not asked for";
    }
  }
}

TEST(Strip, HoldsTheGradientInEveryMode) {
  const auto port = portWithGradient();
  VRTGradientView view(NSMakeRect(0, 0, 213, 24));
  view.setGradientPort(port.get());
  for (const int mode : {1, 2, 3, 7}) {
    view.setRenderMode(mode);
    for (const int width : {1, 2, 3, 209, 1173}) {
      view.updateImage({width + 0.75, 5});
      const NSBitmapImageRep* bitmap = view.gradientBitmap();
      ASSERT_EQ(bitmap->pixelsWide(), static_cast<std::uint32_t>(width));
      ASSERT_EQ(bitmap->pixelsHigh(), 5u);
      EXPECT_EQ(bitmap->bytesPerRow() % 16, 0u);
      for (int x = 0; x < width; ++x) {
        const Pixel expected = expectedPixel(channelOf(*port), x, width, mode);
        ASSERT_EQ(pixelOf(*bitmap, static_cast<std::uint32_t>(x), 0), expected) << mode << " " << width << " " << x;
        ASSERT_EQ(pixelOf(*bitmap, static_cast<std::uint32_t>(x), 4), expected);
      }
    }
  }
  for (const NSSize none : {NSSize{-3, 5}, NSSize{5, 0}, NSSize{std::nan(""), 2}, NSSize{1e30, 1e30}}) {
    view.updateImage(none);
    EXPECT_EQ(view.gradientBitmap()->bitmapData(), nullptr);
  }
}

TEST(Strip, IsRefilledOnlyWhenSomethingChanged) {
  const auto port = portWithGradient();
  VRTGradientView view(NSMakeRect(0, 0, 104, 24));
  view.setGradientPort(port.get());
  const auto drawn = [&](std::uint32_t x = 0, std::uint32_t y = 0) {
    view.updateImage({100, 20});
    return pixelOf(*view.gradientBitmap(), x, y);
  };
  const Pixel first = drawn();
  EXPECT_EQ(first, (Pixel{255, 255, 255, 255}));
  const NSBitmapImageRep* bitmap = view.gradientBitmap();
  static_cast<VRTChannelGradientSampleRGB*>(channelOf(*port).rgbFolder.getDescendants().front())->red = 0;
  drawn();
  view.setRenderMode(1);
  EXPECT_EQ(drawn(), first) << "nobody said that anything changed";
  view.update();
  EXPECT_EQ(drawn(), (Pixel{0, 255, 255, 255}));
  EXPECT_EQ(view.gradientBitmap(), bitmap);

  port->setValue(nullptr);
  EXPECT_EQ(drawn(), (Pixel{0, 255, 255, 255}));
  view.update();
  EXPECT_EQ(drawn(), (Pixel{0, 0, 0, 0}));
  port->setValue(VRTGradient::gradient());
  EXPECT_EQ(drawn(99, 19), (Pixel{0, 0, 0, 255})) << "without a gradient it stayed out of date";
}

namespace {

QRgb shown(const QImage& image, int x, int y) {
  return pixelAt(image, image.devicePixelRatio(), x, y);
}

Pixel rgb(QRgb color) {
  return {qRed(color), qGreen(color), qBlue(color), 255};
}

}  // namespace

TEST(Strip, IsShownSharpInsideTheFrame) {
  const auto port = portWithGradient();
  VRTGradientView preview(NSMakeRect(0, 0, 213, 24));
  VRTGradientGutterRGB gutterRGB(NSMakeRect(0, 0, 213, 26));
  VRTGradientGutterAlpha gutterAlpha(NSMakeRect(0, 0, 213, 26));
  gutterRGB.setRenderMode(2);
  gutterAlpha.setRenderMode(3);
  const struct {
    VRTGradientView& view;
    int mode, left, top, width, height;  // of the strip, in points from the upper left
  } cases[] = {{preview, 2, 2, 2, 209, 20}, {gutterRGB, 2, 5, 2, 203, 9}, {gutterAlpha, 3, 5, 15, 203, 9}};
  preview.setRenderMode(2);
  for (const auto& each : cases) {
    each.view.setGradientPort(port.get());
    const QImage image = pictureOf(each.view);
    for (int x = 0; x < each.width; ++x) {
      const Pixel expected = expectedPixel(channelOf(*port), x, each.width, each.mode);
      for (const int y : {0, each.height - 1}) {
        ASSERT_EQ(rgb(shown(image, each.left + x, each.top + y)), expected) << each.left << " " << x << " " << y;
      }
    }
  }
}

TEST(Strip, ShowsTheCheckerboardThroughTransparency) {
  const auto port = portWithGradient();
  VRTChannelGradient& channel = channelOf(*port);
  static_cast<VRTChannelGradientSampleAlpha*>(channel.alphaFolder.getDescendants().front())->alpha = 0;
  VRTGradientView view(NSMakeRect(0, 0, 104, 24));
  view.setGradientPort(port.get());
  const QImage image = pictureOf(view);
  std::set<QRgb> colors;
  for (int y = 2; y < 22; ++y) colors.insert(shown(image, 2, y));
  ASSERT_EQ(colors.size(), 2u) << "two squares of the board, and no gradient over them";
  for (const QRgb color : colors) EXPECT_EQ(qRed(color), qBlue(color));

  view.setRenderMode(2);
  EXPECT_EQ(rgb(shown(pictureOf(view), 2, 10)), expectedPixel(channel, 0, 100, 2)) << "opaque colors hide it";
}

TEST(Strip, IsFlatWithoutAGradient) {
  VRTGradientView view(NSMakeRect(0, 0, 60, 24));
  const auto check = [&](const char* when) {
    const QImage image = pictureOf(view);
    for (int x = 2; x < 58; ++x) ASSERT_EQ(shown(image, x, 12), shown(image, 2, 2)) << when;
  };
  check("no port");
  auto port = std::make_shared<VRTGradientPort>("inputGradient");
  view.setGradientPort(port.get());
  check("no value");
  port->setValue(VRTGradient::gradient());
  view.update();
  EXPECT_NE(shown(pictureOf(view), 2, 12), shown(pictureOf(view), 57, 12));
  port.reset();
  EXPECT_EQ(view.getGradientChannel(), nullptr);
  view.update();
  check("the port is gone");
}

TEST(Gutter, TheSharedClassHasNoSamples) {
  VRTGradientGutter gutter(NSMakeRect(0, 0, 100, 26));
  EXPECT_DEATH(gutter.getFolder(), "");
  VRTGradientGutterMap samples;
  EXPECT_DEATH(gutter.getSamples(samples), "");
}
