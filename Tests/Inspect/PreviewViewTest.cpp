// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PreviewView.h"

#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/CoalescedCall.h"
#include "Host/Inspect/DisplayImage.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"
#include "Tests/Inspect/InspectFixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

template <class Sample = std::uint8_t>
std::shared_ptr<VortoBitmap> newBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t format,
                                       std::initializer_list<Sample> samples = {}) {
  std::shared_ptr<VortoBitmap> bitmap(TCCreateBitmap(width, height, format));
  std::copy(samples.begin(), samples.end(), reinterpret_cast<Sample*>(bitmap->data));
  return bitmap;
}

// A picture of the widget in device pixels.
QImage grabbed(QWidget& widget) {
  return widget.grab().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

}  // namespace

TEST(FittedRect, ShrinksToFitAndEnlargesByWholeFactors) {
  using host::fittedRect;
  EXPECT_EQ(fittedRect({100, 50}, {100, 50}), QRect(0, 0, 100, 50));
  EXPECT_EQ(fittedRect({100, 50}, {199, 400}), QRect(49, 175, 100, 50));
  EXPECT_EQ(fittedRect({100, 50}, {350, 400}), QRect(25, 125, 300, 150));
  EXPECT_EQ(fittedRect({100, 50}, {50, 400}), QRect(0, 187, 50, 25));
  EXPECT_EQ(fittedRect({10000, 1}, {100, 100}), QRect(0, 49, 100, 1)) << "never nothing";
  for (const QSize none : {QSize(0, 10), QSize(10, 0)}) EXPECT_TRUE(fittedRect({100, 50}, none).isEmpty());
  EXPECT_TRUE(fittedRect({0, 0}, {10, 10}).isEmpty());
}

TEST(DisplayImage, RoundsAndCuts) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const QImage image = host::displayImage(
      newBitmap<float>(5, 1, VortoPixelFormat::RGBAFloat,
                       {0.5f, 1, 0.001f, 1, 2, -1, nan, 1, 0.25f, 0.5f, 0.75f, 0.5f, 1, 1, 1, 0, 0, 0, 0, nan}));
  const QRgb expected[] = {qRgba(128, 255, 0, 255), qRgba(255, 0, 0, 255), qRgba(64, 128, 128, 128), 0, 0};
  const auto* pixels = reinterpret_cast<const QRgb*>(image.constScanLine(0));
  for (int x = 0; x < 5; ++x) EXPECT_EQ(pixels[x], expected[x]) << x;

  const auto words = newBitmap<std::uint16_t>(1, 1, VortoPixelFormat::RGBA16, {128, 129, 65535, 65535});
  EXPECT_EQ(host::displayImage(words).pixel(0, 0), qRgba(0, 1, 255, 255));
  const auto argb = newBitmap<std::uint8_t>(1, 1, VortoPixelFormat::ARGB8, {255, 1, 2, 3});
  EXPECT_EQ(host::displayImage(argb).pixel(0, 0), qRgba(1, 2, 3, 255));
  EXPECT_TRUE(host::displayImage(newBitmap(2, 2, VortoPixelFormat::YUV8)).isNull());
  EXPECT_TRUE(host::displayImage(nullptr).isNull());
}

TEST(PreviewView, ShowsPixelsAsTheyAreAtEveryRatio) {
  const auto bitmap = newBitmap(37, 23, VortoPixelFormat::RGBA8);
  for (std::uint32_t i = 0; i < 37 * 23; ++i) {
    const std::uint8_t pixel[] = {static_cast<std::uint8_t>(i * 7), static_cast<std::uint8_t>(i * 13),
                                  static_cast<std::uint8_t>(i / 3), 255};
    std::copy(std::begin(pixel), std::end(pixel), bitmap->data + i * 4);
  }
  for (const QSize size : {QSize(101, 87), QSize(151, 120), QSize(300, 190)}) {
    host::PreviewView view;
    view.resize(size);
    view.setPicture(bitmap);
    const QImage shot = grabbed(view);
    const int factor = static_cast<int>(view.zoom());
    ASSERT_GE(factor, 1);
    const QImage expected = host::displayImage(bitmap).scaled(37 * factor, 23 * factor).convertToFormat(shot.format());
    const QPoint middle((shot.width() - expected.width()) / 2, (shot.height() - expected.height()) / 2);
    // Where it stands depends on how margins fall on pixels; what it shows does not.
    int found = 0;
    for (int i = 0; i < 9; ++i) {
      found += shot.copy(QRect(middle + QPoint(i % 3 - 1, i / 3 - 1), expected.size())) == expected;
    }
    EXPECT_EQ(found, 1) << size.width() << " x " << size.height() << ", factor " << factor;
  }
}

TEST(PreviewView, LaysTransparencyOnACheckerboard) {
  const host::InspectorColors colors = host::inspectorColors(QPalette());
  host::PreviewView view;
  view.resize(148, 148);
  view.setPicture(newBitmap(100, 100, VortoPixelFormat::RGBA8));  // all transparent
  const QImage shot = grabbed(view);
  int light = 0, dark = 0;
  for (int y = 0; y < shot.height(); ++y) {
    for (int x = 0; x < shot.width(); ++x) {
      light += shot.pixelColor(x, y) == colors.checkerLight;
      dark += shot.pixelColor(x, y) == colors.checkerDark;
    }
  }
  const double zoom = view.zoom();
  EXPECT_EQ(light + dark, static_cast<int>(10000 * zoom * zoom));
  EXPECT_NEAR(light, dark, 0.1 * light);
  EXPECT_EQ(shot.pixelColor(1, 1), colors.previewGround);
}

TEST(CoalescedCall, RunsOnceForAllThatIsWaiting) {
  int runs = 0;
  host::CoalescedCall* itself = nullptr;
  host::CoalescedCall call([&] {
    // Requests that come while it runs make one more.
    if (++runs == 1) {
      for (int i = 0; i < 5; ++i) itself->request();
    }
  });
  itself = &call;
  for (int i = 0; i < 100; ++i) call.request();
  EXPECT_EQ(runs, 0);
  inspect_test::handleEvents();
  EXPECT_EQ(runs, 2);
  call.request();
  call.runNow();
  EXPECT_EQ(runs, 3);
  EXPECT_FALSE(call.isPending());
  inspect_test::handleEvents();
  EXPECT_EQ(runs, 3);
}
