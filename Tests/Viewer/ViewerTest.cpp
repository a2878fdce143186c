// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/Viewer.h"

#include "Host/Inspect/Appearance.h"
#include "TarnCore/TCPixelFormat.h"
#include "Tests/Viewer/ViewerFixture.h"

#include <gtest/gtest.h>

namespace {

using host::Viewer;
using host::ViewSettings;
using host::ZoomMode;
using viewer_test::newBitmap;
using viewer_test::noise;
using viewer_test::pictureOf;

// The widget in device pixels, when all is there.
QImage grabbed(Viewer& viewer) {
  viewer.showNow();
  return viewer.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

// All of it in one color.
host::BitmapRef flat(std::uint32_t width, std::uint32_t height, std::array<std::uint8_t, 4> pixel) {
  const auto bitmap = newBitmap(width, height, VortoPixelFormat::RGBA8);
  for (std::size_t i = 0; i < std::size_t{4} * width * height; ++i) bitmap->data[i] = pixel[i % 4];
  return bitmap;
}

ViewSettings actualPixels() {
  ViewSettings settings;
  settings.zoomMode = ZoomMode::Factor;
  return settings;
}

}  // namespace

TEST(Viewer, ShowsPixelsAsTheyAreAtEveryRatio) {
  const auto bitmap = newBitmap(37, 23, VortoPixelFormat::RGBA8);
  QImage picture(37, 23, QImage::Format_RGB32);
  for (std::uint32_t i = 0; i < 37 * 23; ++i) {
    const std::uint8_t pixel[] = {static_cast<std::uint8_t>(i * 7), static_cast<std::uint8_t>(i * 13),
                                  static_cast<std::uint8_t>(i / 3), 255};
    std::copy(std::begin(pixel), std::end(pixel), bitmap->data + i * 4);
    picture.setPixel(static_cast<int>(i % 37), static_cast<int>(i / 37), qRgb(pixel[0], pixel[1], pixel[2]));
  }
  ViewSettings settings;
  settings.pixelGrid = false;
  for (const QSize size : {QSize(101, 87), QSize(151, 120), QSize(300, 190)}) {
    Viewer viewer;
    viewer.setSettings(settings);
    viewer.resize(size);
    viewer.setPicture(pictureOf(bitmap));
    const QImage shot = grabbed(viewer);
    const int factor = static_cast<int>(viewer.zoom());
    ASSERT_GE(factor, 1);
    const QImage expected = picture.scaled(37 * factor, 23 * factor);
    const QPoint middle((shot.width() - expected.width()) / 2, (shot.height() - expected.height()) / 2);
    // Where it stands depends on how margins fall on pixels; what it shows does not.
    int found = 0;
    for (int i = 0; i < 9; ++i) {
      found += shot.copy(QRect(middle + QPoint(i % 3 - 1, i / 3 - 1), expected.size())) == expected;
    }
    EXPECT_EQ(found, 1) << size.width() << " x " << size.height() << ", factor " << factor;
  }
}

TEST(Viewer, LaysTransparencyOnItsGround) {
  const host::InspectorColors colors = host::inspectorColors(QPalette());
  Viewer viewer;
  viewer.resize(148, 148);
  viewer.setPicture(pictureOf(flat(100, 100, {0, 0, 0, 0})));
  QImage shot = grabbed(viewer);
  int light = 0, dark = 0;
  for (int y = 0; y < shot.height(); ++y) {
    for (int x = 0; x < shot.width(); ++x) {
      light += shot.pixelColor(x, y) == colors.checkerLight;
      dark += shot.pixelColor(x, y) == colors.checkerDark;
    }
  }
  EXPECT_EQ(light + dark, static_cast<int>(10000 * viewer.zoom() * viewer.zoom()));
  EXPECT_NEAR(light, dark, 0.1 * light);
  EXPECT_EQ(shot.pixelColor(1, 1), colors.previewGround);
  ViewSettings settings;
  settings.ground = host::Ground::Color;
  settings.groundColor = 0x123456;
  viewer.setSettings(settings);
  shot = grabbed(viewer);
  EXPECT_EQ(shot.pixel(shot.rect().center()), qRgb(0x12, 0x34, 0x56));
}

TEST(Viewer, SplitHasBeforeOnOneSideAndTheResultOnTheOther) {
  Viewer viewer;
  viewer.resize(260, 200);
  viewer.setPicture(pictureOf(flat(200, 100, {0, 200, 0, 255}), flat(50, 25, {200, 0, 0, 255})));
  ViewSettings settings = actualPixels();
  settings.compare = host::CompareMode::Split;
  const auto counts = [&](const ViewSettings& with) {
    viewer.setSettings(with);
    const QImage shot = grabbed(viewer);
    std::array<int, 2> count{};
    for (int y = 0; y < shot.height(); ++y) {
      for (int x = 0; x < shot.width(); ++x) {
        count[0] += shot.pixel(x, y) == qRgb(200, 0, 0);
        count[1] += shot.pixel(x, y) == qRgb(0, 200, 0);
      }
    }
    return count;
  };
  for (const auto direction : {host::SplitDirection::SideBySide, host::SplitDirection::Stacked}) {
    settings.splitDirection = direction;
    settings.split = 0.25;
    const auto [before, after] = counts(settings);
    EXPECT_GT(before, 3000);
    EXPECT_NEAR(after, 3 * before, 3500) << "but for the line, its handle and its tags";
  }
  settings.split = 0;
  EXPECT_EQ(counts(settings)[0], 0);
  settings.compare = host::CompareMode::Before;
  EXPECT_EQ(counts(settings), (std::array<int, 2>{20000, 0})) << "the small one in the full one's place";
  settings.compare = host::CompareMode::Result;
  EXPECT_EQ(counts(settings), (std::array<int, 2>{0, 20000}));
  viewer.setPeeking(true);
  EXPECT_EQ(counts(settings), (std::array<int, 2>{20000, 0}));
  QKeyEvent release(QEvent::KeyRelease, Qt::Key_X, Qt::NoModifier);
  QCoreApplication::sendEvent(&viewer, &release);
  EXPECT_EQ(counts(settings), (std::array<int, 2>{0, 20000}));
}
