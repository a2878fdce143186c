// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/ViewGeometry.h"

#include <gtest/gtest.h>

namespace {

using host::deviceAt;
using host::pictureAt;
using host::ViewArea;
using host::ViewSettings;
using host::ZoomMode;

ViewSettings factor(double zoom, double x = 0.5, double y = 0.5) {
  ViewSettings settings;
  settings.zoomMode = ZoomMode::Factor;
  settings.zoom = zoom;
  settings.centerX = x;
  settings.centerY = y;
  return settings;
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

TEST(ViewGeometry, PlacesByTheMode) {
  const ViewArea view{{100, 50}, {300, 300}, 10};
  ViewSettings settings;
  EXPECT_EQ(placeOf(settings, view), QRect(50, 100, 200, 100)) << "twice, within the margins";
  EXPECT_EQ(zoomOf(settings, view), 2);
  settings.zoomMode = ZoomMode::Fill;
  EXPECT_EQ(placeOf(settings, view), QRect(-150, 0, 600, 300));
  EXPECT_EQ(placeOf(factor(1), view), QRect(100, 125, 100, 50));
  EXPECT_EQ(placeOf(factor(3, 0, 1), view), QRect(150, 0, 300, 150)) << "its lower left corner in the middle";
  EXPECT_EQ(placeOf(factor(1.0 / 64), view).size(), QSize(2, 1));
  for (const ViewArea& none : {ViewArea{{}, {300, 300}, 10}, ViewArea{{100, 50}, {}, 10}}) {
    EXPECT_TRUE(placeOf(settings, none).isEmpty());
    EXPECT_EQ(zoomOf(settings, none), 0);
    EXPECT_EQ(zoomedAt(settings, none, 2, {1, 1}), settings);
    EXPECT_EQ(panned(settings, none, {1, 1}), settings);
  }
}

TEST(ViewGeometry, DeviceAndPictureAreInverse) {
  for (const double zoom : {1.0 / 64, 0.3, 1.0, 1.5, 8.0, 64.0}) {
    const ViewArea view{{7680, 4321}, {1201, 803}, 24};
    const QRect place = placeOf(factor(zoom, 0.31, 0.77), view);
    for (const QPointF device : {QPointF(0, 0), QPointF(600.5, 401), QPointF(-37, 5000)}) {
      const QPointF there = pictureAt(place, view.picture, device);
      const QPointF back = deviceAt(place, view.picture, there);
      EXPECT_NEAR(back.x(), device.x(), 1e-6) << zoom;
      EXPECT_NEAR(back.y(), device.y(), 1e-6) << zoom;
    }
    EXPECT_EQ(pictureAt(place, view.picture, place.topLeft()), QPointF(0, 0));
    EXPECT_EQ(pictureAt(place, view.picture, place.bottomRight() + QPoint(1, 1)), QPointF(7680, 4321));
  }
}

TEST(ViewGeometry, ZoomKeepsWhatIsUnderThePointer) {
  const ViewArea view{{1920, 1080}, {1000, 700}, 16};
  const QPointF pointer(317, 522);
  for (const ZoomMode mode : {ZoomMode::Fit, ZoomMode::Fill, ZoomMode::Factor}) {
    ViewSettings settings = factor(0.8, 0.4, 0.6);
    settings.zoomMode = mode;
    const double first = zoomOf(settings, view);
    const QPointF there = pictureAt(placeOf(settings, view), view.picture, pointer);
    const auto step = [&](double by) {
      settings = zoomedAt(settings, view, zoomOf(settings, view) * by, pointer);
      const QPointF now = deviceAt(placeOf(settings, view), view.picture, there);
      // Places are whole device pixels, the first too.
      const double slack = 1 + zoomOf(settings, view) / first;
      EXPECT_LE(std::abs(now.x() - pointer.x()), slack);
      EXPECT_LE(std::abs(now.y() - pointer.y()), slack);
    };
    for (int i = 0; i < 40; ++i) step(1.09);
    for (int i = 0; i < 40; ++i) step(1 / 1.09);
  }
  EXPECT_EQ(zoomedAt(factor(1), view, 1000, pointer).zoom, ViewSettings::kMostZoom);
  EXPECT_EQ(zoomedAt(factor(1), view, 0, pointer).zoom, ViewSettings::kLeastZoom);
}

TEST(ViewGeometry, PansByDevicePixelsAndKeepsThePictureInSight) {
  const ViewArea view{{1920, 1080}, {1000, 700}, 16};
  const QRect from = placeOf(factor(2), view);
  EXPECT_EQ(placeOf(panned(factor(2), view, {30, -41}), view), from.translated(30, -41));
  const QRect far = placeOf(panned(factor(2), view, {1e9, -1e9}), view);
  EXPECT_TRUE(far.intersects(QRect(QPoint(), view.area)));
  ViewSettings fit;
  EXPECT_EQ(panned(fit, view, {5, 5}).zoomMode, ZoomMode::Factor);
  EXPECT_EQ(zoomOf(panned(fit, view, {5, 5}), view), zoomOf(fit, view));
}

TEST(ViewGeometry, StepsGoThroughWholeZooms) {
  double zoom = ViewSettings::kLeastZoom;
  std::vector<double> up{zoom};
  while (zoom < ViewSettings::kMostZoom && up.size() < 100) up.push_back(zoom = host::steppedZoom(zoom, true));
  for (const double whole : {0.25, 1.0 / 3, 0.5, 1.0, 2.0, 64.0}) {
    EXPECT_NE(std::find(up.begin(), up.end(), whole), up.end()) << whole;
  }
  std::vector<double> down{zoom};
  while (zoom > ViewSettings::kLeastZoom && down.size() < 100) down.push_back(zoom = host::steppedZoom(zoom, false));
  std::reverse(down.begin(), down.end());
  EXPECT_EQ(up, down);
  EXPECT_EQ(host::steppedZoom(64, true), 64);
  EXPECT_EQ(host::steppedZoom(0.97, true), 1);
  EXPECT_EQ(host::steppedZoom(1.03, false), 1);
}

TEST(ViewSettings, AreKeptAsText) {
  ViewSettings settings = factor(5.25, 0.1, 0.9);
  settings.compare = host::CompareMode::Split;
  settings.splitDirection = host::SplitDirection::Stacked;
  settings.split = 1.0 / 3;
  settings.channels = host::ChannelView::Luminance;
  settings.exposure = -2.5;
  settings.gamma = 2.2;
  settings.display = {host::DisplayChoice::Kind::View, "A display", "Film (soft)"};
  settings.ground = host::Ground::Color;
  settings.groundColor = 0xFF0080;
  settings.pixelGrid = false;
  EXPECT_EQ(host::settingsFromText(host::settingsText(settings)), settings);
  EXPECT_EQ(host::settingsText({}), "");
  EXPECT_EQ(
      host::settingsFromText("zoom 1e9\nexposure nan\ngamma -4\nchannels mauve\nsplit\n\nnonsense here\nzoom 2x\n"),
      [] {
        ViewSettings limited;
        limited.zoom = ViewSettings::kMostZoom;
        limited.gamma = ViewSettings::kLeastGamma;
        return limited;
      }());
}
