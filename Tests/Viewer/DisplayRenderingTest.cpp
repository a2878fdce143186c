// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/DisplayRendering.h"

#include "Host/Color/ColorModuleLoader.h"
#include "Host/Viewer/DisplayColors.h"
#include "TarnCore/TCPixelFormat.h"
#include "Tests/Viewer/ViewerFixture.h"

#include <gtest/gtest.h>

// What the screen shows, held against what a scalar of the rules gives.

namespace {

using host::ChannelView;
using host::ColorLook;
using host::ColorSpace;
using host::DisplayGround;
using host::DisplayPlace;
using host::KnownSpace;
using host::PicturePyramid;
using viewer_test::Color;
using viewer_test::colorAt;
using viewer_test::newBitmap;
using viewer_test::noise;

constexpr std::uint32_t kLayouts[] = {VortoPixelFormat::RGBA8, VortoPixelFormat::ARGB8, VortoPixelFormat::RGBA16,
                                      VortoPixelFormat::RGBAFloat};
const DisplayGround kCheckers{qRgb(250, 251, 252), qRgb(100, 90, 80), 5};

double toLight(double value) {  // IEC 61966-2-1
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}
double fromLight(double light) {
  return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

// A space of the picture, and what is done to its colors.
struct Case {
  ChannelView channels = ChannelView::Color;
  double exposure = 0;
  double gamma = 1;
  bool isLinear = false;  // linear Rec. 709, otherwise sRGB
};

Color isolated(Color color, ChannelView channels) {
  if (channels == ChannelView::Color) return color;
  if (channels != ChannelView::Luminance) {
    color[0] = color[1] = color[2] = color[static_cast<std::size_t>(channels) - 1];
  }
  color[3] = 1;
  return color;
}

Color looked(const Color& premultiplied, const Case& wanted) {
  Color color = isolated(premultiplied, wanted.channels);
  const double alpha = color[3];
  const bool isLuminance = wanted.channels == ChannelView::Luminance;
  const bool isInLight = wanted.exposure != 0 || isLuminance;
  if (wanted.channels == ChannelView::Alpha || !(isInLight || wanted.gamma != 1 || wanted.isLinear)) return color;
  if (alpha == 0) return color;  // of noise it is black
  double light[3];
  for (std::size_t c = 0; c < 3; ++c) {
    const double straight = color[c] / alpha;
    const double mirrored = std::copysign(toLight(std::abs(straight)), straight);
    light[c] = (wanted.isLinear ? straight : mirrored) * std::exp2(wanted.exposure);
  }
  if (isLuminance) light[0] = light[1] = light[2] = 0.2126 * light[0] + 0.7152 * light[1] + 0.0722 * light[2];
  for (std::size_t c = 0; c < 3; ++c) {
    color[c] = alpha * std::pow(std::max(0.0, fromLight(light[c])), 1 / wanted.gamma);
  }
  return color;
}

int byteOf(double value) {
  return value > 0 ? value >= 1 ? 255 : static_cast<int>(value * 255 + 0.5) : 0;
}

// Laid on the ground at a place that counts from the picture's corner.
QRgb shownPixel(const Color& color, QPoint at, const DisplayGround& ground) {
  const int alpha = byteOf(color[3]);
  const bool isDark = (at.x() / ground.cell + at.y() / ground.cell) % 2 == 1;
  const QRgb behind = isDark ? ground.dark : ground.light;
  const auto over = [&](double value, int back) {
    return std::min(byteOf(value), alpha) + static_cast<int>(std::lround(back * (255 - alpha) / 255.0));
  };
  return qRgb(over(color[0], qRed(behind)), over(color[1], qGreen(behind)), over(color[2], qBlue(behind)));
}

// The mean of what a rectangle of the picture's pixels holds.
Color meanOf(const VortoBitmap& bitmap, const QRectF& area) {
  Color sum{};
  for (auto y = static_cast<std::uint32_t>(area.top()); y < std::min<double>(area.bottom(), bitmap.height); ++y) {
    for (auto x = static_cast<std::uint32_t>(area.left()); x < std::min<double>(area.right(), bitmap.width); ++x) {
      const double across = std::min(area.right(), x + 1.0) - std::max<double>(area.left(), x);
      const double down = std::min(area.bottom(), y + 1.0) - std::max<double>(area.top(), y);
      const Color color = colorAt(bitmap, x, y);
      for (std::size_t c = 0; c < 4; ++c) sum[c] += color[c] * across * down;
    }
  }
  for (double& value : sum) value /= area.width() * area.height();
  return sum;
}

QImage expectedImage(const VortoBitmap& bitmap, const DisplayPlace& place, const DisplayGround& ground,
                     const Case& wanted) {
  QImage image(place.visible.size(), QImage::Format_RGB32);
  const double across = static_cast<double>(bitmap.width) / place.place.width();
  const double down = static_cast<double>(bitmap.height) / place.place.height();
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QPoint at = QPoint(x, y) + place.visible.topLeft() - place.place.topLeft();
      const Color color = meanOf(bitmap, QRectF(at.x() * across, at.y() * down, across, down));
      image.setPixel(x, y, shownPixel(looked(color, wanted), at, ground));
    }
  }
  return image;
}

struct Difference {
  int most = 0;
  double part = 0;  // of the pixels
};

Difference differenceOf(const QImage& a, const QImage& b) {
  Difference difference{a.size() == b.size() ? 0 : 999, 0};
  if (difference.most != 0) return difference;
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x) {
      const QRgb p = a.pixel(x, y);
      const QRgb q = b.pixel(x, y);
      const int off =
          std::max({std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)), std::abs(qBlue(p) - qBlue(q))});
      difference.most = std::max(difference.most, off);
      difference.part += off != 0 ? 1.0 / a.width() / a.height() : 0;
    }
  }
  return difference;
}

QImage shown(const host::BitmapRef& bitmap, const DisplayPlace& place, const Case& wanted = {}) {
  static host::DisplayColors colors(host::newColorModule(""));
  const ColorSpace space =
      host::knownSpace(wanted.isLinear ? KnownSpace::LinearRec709 : KnownSpace::SRgb, ColorSpace::Origin::Told);
  const ColorLook look{{}, wanted.exposure, wanted.gamma, wanted.channels == ChannelView::Luminance};
  PicturePyramid pyramid(bitmap);
  return displayImage(pyramid, place, kCheckers, wanted.channels, colors.way(space, look));
}

}  // namespace

TEST(DisplayImage, RoundsAndCuts) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const auto bytes = [](const host::BitmapRef& bitmap) {
    const QRect all(0, 0, static_cast<int>(bitmap->width), static_cast<int>(bitmap->height));
    PicturePyramid pyramid(bitmap);
    return displayImage(pyramid, {all, all}, {qRgb(0, 0, 0), qRgb(0, 0, 0), 1}, ChannelView::Color, {});
  };
  const QImage floats =
      bytes(newBitmap<float>(5, 1, VortoPixelFormat::RGBAFloat,
                             {0.5f, 1, 0.001f, 1, 2, -1, nan, 1, 0.25f, 0.5f, 0.75f, 0.5f, 1, 1, 1, 0, 0, 0, 0, nan}));
  const QRgb expected[] = {qRgb(128, 255, 0), qRgb(255, 0, 0), qRgb(64, 128, 128), qRgb(0, 0, 0), qRgb(0, 0, 0)};
  for (int x = 0; x < 5; ++x) EXPECT_EQ(floats.pixel(x, 0), expected[x]) << x;
  const auto words = newBitmap<std::uint16_t>(1, 1, VortoPixelFormat::RGBA16, {128, 129, 65535, 65535});
  EXPECT_EQ(bytes(words).pixel(0, 0), qRgb(0, 1, 255));
  const auto argb = newBitmap<std::uint8_t>(1, 1, VortoPixelFormat::ARGB8, {255, 1, 2, 3});
  EXPECT_EQ(bytes(argb).pixel(0, 0), qRgb(1, 2, 3));
  EXPECT_TRUE(bytes(newBitmap(2, 2, VortoPixelFormat::YUV8)).isNull());
}

TEST(DisplayImage, WithNothingToConvertBytesAreTheRoundedSamples) {
  for (const std::uint32_t layout : kLayouts) {
    const auto bitmap = noise(61, 43, layout);
    for (const ChannelView channels :
         {ChannelView::Color, ChannelView::Red, ChannelView::Green, ChannelView::Blue, ChannelView::Alpha}) {
      for (const DisplayPlace& place : {DisplayPlace{QRect(0, 0, 61, 43), QRect(0, 0, 61, 43)},
                                        DisplayPlace{QRect(-40, 7, 183, 129), QRect(0, 7, 100, 80)}}) {
        const Case wanted{.channels = channels};
        const Difference off =
            differenceOf(shown(bitmap, place, wanted), expectedImage(*bitmap, place, kCheckers, wanted));
        EXPECT_EQ(off.most, 0) << layout << ", channels " << static_cast<int>(channels) << ", " << place.place.width();
      }
    }
  }
}

TEST(DisplayImage, LooksAreWhatTheFormulasGive) {
  const DisplayPlace place{QRect(0, 0, 61, 43), QRect(3, 2, 58, 41)};
  const Case cases[] = {{.isLinear = true},
                        {.exposure = 1.5, .isLinear = true},
                        {.exposure = -2},
                        {.gamma = 2.2},
                        {.exposure = 0.5, .gamma = 0.7, .isLinear = true},
                        {.channels = ChannelView::Luminance},
                        {.channels = ChannelView::Luminance, .exposure = 1, .isLinear = true},
                        {.channels = ChannelView::Green, .exposure = 1, .isLinear = true},
                        {.channels = ChannelView::Alpha, .exposure = 1, .gamma = 2, .isLinear = true}};
  for (const std::uint32_t layout : kLayouts) {
    const auto bitmap = noise(61, 43, layout);
    for (const Case& wanted : cases) {
      const Difference off =
          differenceOf(shown(bitmap, place, wanted), expectedImage(*bitmap, place, kCheckers, wanted));
      EXPECT_LE(off.most, 1) << layout << ", case " << &wanted - cases;
      EXPECT_LT(off.part, 0.003) << layout << ", case " << &wanted - cases << ": only where rounding is a toss-up";
    }
  }
}

TEST(DisplayImage, PixelsBetweenPixelsAreMeansOfWhatTheyCover) {
  for (const std::uint32_t layout : kLayouts) {
    const auto bitmap = noise(61, 43, layout);
    for (const QSize& size : {QSize(47, 33), QSize(40, 40), QSize(100, 70), QSize(32, 22), QSize(300, 43)}) {
      const DisplayPlace place{QRect(QPoint(-3, 5), size), QRect(QPoint(0, 6), size - QSize(5, 4))};
      const Difference off = differenceOf(shown(bitmap, place), expectedImage(*bitmap, place, kCheckers, {}));
      EXPECT_LE(off.most, 1) << layout << ", " << size.width();
      EXPECT_LT(off.part, 0.01) << layout << ", " << size.width();
    }
  }
}

TEST(DisplayImage, MuchSmallerPicturesAreMeansToo) {
  for (const std::uint32_t layout : kLayouts) {
    const auto bitmap = noise(256, 128, layout);
    const DisplayPlace whole{QRect(0, 0, 64, 32), QRect(0, 0, 64, 32)};
    const Difference off = differenceOf(shown(bitmap, whole), expectedImage(*bitmap, whole, kCheckers, {}));
    EXPECT_LE(off.most, 1) << layout << ": means of 16 bytes are often halves";
    EXPECT_LT(off.part, 0.1) << layout;
  }
}

TEST(PicturePyramid, LevelsAreMeansOfWhatTheyStandFor) {
  for (const std::uint32_t layout : kLayouts) {
    for (const QSize& size : {QSize(37, 21), QSize(64, 8), QSize(1, 9), QSize(6, 1)}) {
      const auto bitmap =
          noise(static_cast<std::uint32_t>(size.width()), static_cast<std::uint32_t>(size.height()), layout);
      PicturePyramid pyramid(bitmap);
      for (unsigned k = 1; k < 7; ++k) {
        const VortoBitmap& level = pyramid.level(k);
        const double side = std::exp2(k);
        if (std::ceil(size.width() / side) != level.width || std::ceil(size.height() / side) != level.height) {
          EXPECT_EQ(&level, &pyramid.level(k - 1)) << "only the last is there again";
          break;
        }
        for (std::uint32_t y = 0; y < level.height; ++y) {
          for (std::uint32_t x = 0; x < level.width; ++x) {
            QRectF area(x * side, y * side, side, side);
            area &= QRectF(QPointF(), QSizeF(size));
            const Color expected = meanOf(*bitmap, area);
            const Color found = colorAt(level, x, y);
            for (std::size_t c = 0; c < 4; ++c) ASSERT_NEAR(found[c], expected[c], 5e-5) << layout << ", level " << k;
          }
        }
      }
    }
  }
}
