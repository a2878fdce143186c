// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/Viewer.h"

#include "Host/Inspect/Appearance.h"
#include "Host/Viewer/ReadoutLine.h"
#include "Host/Viewer/ViewerBar.h"
#include "TarnCore/TCPixelFormat.h"
#include "Tests/Support/EnglishTexts.h"
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

TEST(Viewer, QuickPicturesStandInTheFullOnesPlace) {
  Viewer viewer;
  viewer.resize(300, 300);
  const auto quick = pictureOf(flat(10, 10, {0, 0, 250, 255}));
  quick->size = {100, 100};
  quick->isFull = false;
  viewer.setSettings(actualPixels());
  viewer.setPicture(quick);
  const QImage shot = grabbed(viewer);
  int blue = 0;
  for (int y = 0; y < shot.height(); ++y) {
    for (int x = 0; x < shot.width(); ++x) blue += shot.pixel(x, y) == qRgb(0, 0, 250);
  }
  EXPECT_EQ(blue, 10000);
}

TEST(Viewer, MouseZoomsPansAndMovesTheSplit) {
  Viewer viewer;
  viewer.resize(400, 300);
  viewer.setPicture(pictureOf(noise(800, 600, VortoPixelFormat::RGBA8), noise(800, 600, VortoPixelFormat::RGBA8, 2)));
  viewer.show();
  const auto pixelAt = [&](QPoint point) {
    QTest::mouseMove(&viewer, point + QPoint(1, 0));
    QTest::mouseMove(&viewer, point);
    return viewer.readout() ? QPoint(static_cast<int>(viewer.readout()->x), static_cast<int>(viewer.readout()->y))
                            : QPoint(-1, -1);
  };
  const QPoint point(130, 110);
  QPoint there = pixelAt(point);
  const double fit = viewer.zoom();
  QWheelEvent wheel(point, viewer.mapToGlobal(point), {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                    false);
  for (int i = 0; i < 12; ++i) QCoreApplication::sendEvent(&viewer, &wheel);
  EXPECT_NEAR(viewer.zoom() / fit, 8, 0.4);
  EXPECT_LE((pixelAt(point) - there).manhattanLength(), 5) << "two of them were one on the screen";

  there = pixelAt(point);
  QTest::mousePress(&viewer, Qt::MiddleButton, {}, point);
  QTest::mouseMove(&viewer, point + QPoint(30, 20));
  QTest::mouseRelease(&viewer, Qt::MiddleButton, {}, point + QPoint(30, 20));
  EXPECT_LE((pixelAt(point + QPoint(30, 20)) - there).manhattanLength(), 1);

  QTest::mouseDClick(&viewer, Qt::LeftButton, {}, point);
  EXPECT_EQ(viewer.settings().zoomMode, ZoomMode::Fit);
  there = pixelAt(point);
  QTest::mouseDClick(&viewer, Qt::LeftButton, {}, point);
  EXPECT_EQ(viewer.zoom(), 1);
  EXPECT_LE((pixelAt(point) - there).manhattanLength(), 2);

  ViewSettings settings;
  settings.compare = host::CompareMode::Split;
  viewer.setSettings(settings);
  QTest::mousePress(&viewer, Qt::LeftButton, {}, QPoint(202, 150));
  QTest::mouseMove(&viewer, QPoint(110, 150));
  QTest::mouseRelease(&viewer, Qt::LeftButton, {}, QPoint(110, 150));
  EXPECT_NEAR(viewer.settings().split, (110 - 22.67) / 354.67, 0.01);
}

TEST(Viewer, SpaceTapsAndPans) {
  Viewer viewer;
  viewer.resize(200, 200);
  viewer.setPicture(pictureOf(flat(800, 600, {9, 9, 9, 255})));
  int taps = 0;
  viewer.setSpaceCall([&] { ++taps; });
  viewer.show();
  QTest::keyClick(&viewer, Qt::Key_Space);
  EXPECT_EQ(taps, 1);
  QTest::keyPress(&viewer, Qt::Key_Space);
  QTest::mousePress(&viewer, Qt::LeftButton, {}, QPoint(100, 100));
  QTest::mouseMove(&viewer, QPoint(80, 100));
  QTest::mouseRelease(&viewer, Qt::LeftButton, {}, QPoint(80, 100));
  QTest::keyRelease(&viewer, Qt::Key_Space);
  EXPECT_EQ(taps, 1);
  EXPECT_GT(viewer.settings().centerX, 0.55);
}

TEST(Viewer, EveryKeyHasItsAction) {
  Viewer viewer;
  viewer.setPicture(pictureOf(flat(80, 60, {9, 9, 9, 255})));
  const auto press = [&](const QKeySequence& keys) {
    int found = 0;
    for (QAction* action : viewer.actions()) {
      EXPECT_FALSE(action->text().isEmpty());
      if (!action->shortcuts().contains(keys)) continue;
      ++found;
      action->trigger();
    }
    EXPECT_EQ(found, 1) << keys.toString().toStdString();
    return viewer.settings();
  };
  using host::ChannelView;
  EXPECT_EQ(press(Qt::Key_R).channels, ChannelView::Red);
  EXPECT_EQ(press(Qt::Key_R).channels, ChannelView::Color) << "and back";
  EXPECT_EQ(press(Qt::Key_L).channels, ChannelView::Luminance);
  EXPECT_EQ(press(Qt::Key_C).channels, ChannelView::Color);
  EXPECT_EQ(press(Qt::Key_E).exposure, 0.5);
  EXPECT_EQ(press(Qt::SHIFT | Qt::Key_E).exposure, 0);
  EXPECT_EQ(press(Qt::Key_S).compare, host::CompareMode::Split);
  EXPECT_LT(press(Qt::ALT | Qt::Key_Left).split, 0.5);
  EXPECT_EQ(press(Qt::Key_T).display.kind, host::DisplayChoice::Kind::Off);
  EXPECT_EQ(press(Qt::SHIFT | Qt::Key_A).ground, host::Ground::Black);
  EXPECT_EQ(press(Qt::Key_1).zoom, 1);
  EXPECT_EQ(press(Qt::Key_Plus).zoom, 2);
  EXPECT_GT(press(Qt::Key_Right).centerX, 0.5);
  EXPECT_EQ(press(Qt::Key_F).zoomMode, ZoomMode::Fit);
  EXPECT_FALSE(press(Qt::SHIFT | Qt::Key_G).pixelGrid);
  // No key is taken twice.
  QSet<QString> keys;
  for (const QAction* action : viewer.actions()) {
    for (const QKeySequence& key : action->shortcuts()) {
      EXPECT_FALSE(keys.contains(key.toString())) << key.toString().toStdString();
      keys.insert(key.toString());
    }
  }
}

TEST(Viewer, BarAndReadoutFollow) {
  readEnglishTexts();
  Viewer viewer;
  host::ViewerBar bar(viewer);
  host::ReadoutLine line(viewer);
  viewer.resize(400, 300);
  const auto picture = pictureOf(noise(80, 60, VortoPixelFormat::RGBAFloat));
  picture->space = host::knownSpace(host::KnownSpace::LinearRec709, host::ColorSpace::Origin::Told);
  viewer.setPicture(picture);
  viewer.showNow();
  EXPECT_EQ(viewer.shownAs(), QString::fromUtf8("Linear Rec.709 \u2192 sRGB"));
  const auto button = [&](const QString& name) {
    for (auto* found : bar.findChildren<QAbstractButton*>()) {
      if (found->accessibleName() == name) return found;
    }
    return static_cast<QAbstractButton*>(nullptr);
  };
  ASSERT_TRUE(button("Display transform") && button("Red") && button("Zoom"));
  EXPECT_EQ(button("Display transform")->text(), viewer.shownAs());
  button("Red")->click();
  EXPECT_EQ(viewer.settings().channels, host::ChannelView::Red);
  EXPECT_TRUE(button("Red")->isChecked());
  EXPECT_FALSE(button("Color")->isChecked());
  auto* exposure = bar.findChildren<QDoubleSpinBox*>().at(0);
  exposure->setValue(1.5);
  EXPECT_EQ(viewer.settings().exposure, 1.5);
  viewer.setSettings(actualPixels());
  EXPECT_EQ(exposure->value(), 0);
  EXPECT_EQ(button("Zoom")->text(), "100 %");
  viewer.setPicture(nullptr);
  EXPECT_EQ(viewer.zoom(), 0);
  viewer.showNow();
}

TEST(Viewer, NoticesAreOnThePicture) {
  Viewer viewer;
  viewer.resize(500, 300);
  viewer.show();
  int cancelled = 0;
  viewer.setNotice(
      "Rendering", Viewer::NoticeKind::Busy, [&] { ++cancelled; }, 3.5);
  auto* cancel = viewer.findChild<QToolButton*>();
  ASSERT_TRUE(cancel && cancel->isVisible());
  cancel->click();
  EXPECT_EQ(cancelled, 1);
  bool hasTime = false;
  for (const QLabel* label : viewer.findChildren<QLabel*>()) hasTime |= label->text() == "3 s";
  EXPECT_TRUE(hasTime);
  viewer.setNotice("It failed", Viewer::NoticeKind::Failed);
  EXPECT_EQ(viewer.notice(), Viewer::NoticeKind::Failed);
  EXPECT_FALSE(cancel->isVisible());
  viewer.setNotice({}, Viewer::NoticeKind::None);
  EXPECT_FALSE(cancel->parentWidget()->isVisible());
}
