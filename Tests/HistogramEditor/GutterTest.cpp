// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelHistogram.h"
#include "HistogramEditor/VRTHistogramGutter.h"
#include "Tests/HistogramEditor/LevelsScene.h"
#include "Tests/Support/EnglishTexts.h"

#include <gtest/gtest.h>

#include <QPixmap>
#include <cmath>

// Handles dragged and moved through real events.

namespace {

constexpr NSRect kFrame = {{0, 0}, {218, 10}};  // a track of 208 points
constexpr int kRed = 1;

// A point on the handle of a value.
QPointF on(double value) {
  return {208 * value + 5, 6};
}

template <class Gutter>
class GutterTest : public testing::Test {
 protected:
  GutterTest() : listener(*scene.levels) {
    scene.histogram().setSelectedChannel(kRed);
    gutter = std::make_unique<Gutter>(kFrame);
    gutter->setHistogramPort(scene.levels.get());
    gutter->show();
  }
  void dragFromTo(double from, double to) {
    press(*gutter, on(from));
    drag(*gutter, on(to));
    release(*gutter, on(to));
  }
  VRTHistogram& levels() { return scene.histogram(); }

  Scene scene;
  Listener listener;
  std::unique_ptr<Gutter> gutter;
};
using HistogramGutterIn = GutterTest<VRTHistogramGutterIn>;
using HistogramGutterOut = GutterTest<VRTHistogramGutterOut>;

TEST_F(HistogramGutterIn, EveryHandleIsDragged) {
  dragFromTo(0, 0.25);
  EXPECT_DOUBLE_EQ(levels().blackInForChannel(kRed), 0.25);
  dragFromTo(1, 0.75);
  EXPECT_DOUBLE_EQ(levels().whiteInForChannel(kRed), 0.75);
  dragFromTo(0.5, 0.375);
  EXPECT_NEAR(levels().gammaForChannel(kRed), 2, 1e-9);
  EXPECT_EQ(levels().blackOutForChannel(kRed), 0);
  for (const int other : {0, 2, 3, 4}) {
    EXPECT_EQ(levels().blackInForChannel(other), 0);
    EXPECT_EQ(levels().whiteInForChannel(other), 1);
    EXPECT_EQ(levels().gammaForChannel(other), 1);
  }
}

TEST_F(HistogramGutterOut, EveryHandleIsDragged) {
  dragFromTo(0, 0.5);
  EXPECT_DOUBLE_EQ(levels().blackOutForChannel(kRed), 0.5);
  dragFromTo(1, 0.25);
  EXPECT_DOUBLE_EQ(levels().whiteOutForChannel(kRed), 0.25) << "black and white may cross";
  dragFromTo(0.5, -3);
  EXPECT_EQ(levels().blackOutForChannel(kRed), 0);
  dragFromTo(0.25, 3);
  EXPECT_EQ(levels().whiteOutForChannel(kRed), 1);
  EXPECT_EQ(levels().blackInForChannel(kRed), 0);
  EXPECT_EQ(levels().gammaForChannel(kRed), 1);
}

TEST_F(HistogramGutterIn, NotificationsAndBracketsInOrder) {
  press(*gutter, on(0));
  EXPECT_EQ(listener.take(), kStart);
  drag(*gutter, on(0.1));
  drag(*gutter, on(0.2));
  EXPECT_EQ(listener.take(), (Listener::Told{"value", "value"}));
  release(*gutter, on(0.2));
  EXPECT_EQ(listener.take(), kEnd);
  drag(*gutter, on(0.4));
  EXPECT_EQ(listener.take(), Listener::Told());

  press(*gutter, on(0.8));  // on no handle
  drag(*gutter, on(0.9));
  release(*gutter, on(0.9));
  EXPECT_EQ(listener.take(), (Listener::Told{"StartInteraction", "EndInteraction"}));
  EXPECT_DOUBLE_EQ(levels().blackInForChannel(kRed), 0.2);

  scene.levels->setValue(nullptr);
  listener.take();
  press(*gutter, on(0));
  drag(*gutter, on(0.1));
  EXPECT_EQ(listener.take(), Listener::Told()) << "no levels, no start";
  release(*gutter, on(0.1));
  EXPECT_EQ(listener.take(), kEnd) << "the end is told always";
}

TEST_F(HistogramGutterIn, HandlesAreHalfOpenRectangles) {
  const double half = 0.5;  // gamma: 104 to 115 across, 0 to 9 upwards
  const struct {
    QPointF place;
    bool hit;
  } places[] = {{{104, 6}, true}, {{103, 6}, false}, {{114, 6}, true}, {{115, 6}, false},
                {{109, 1}, true}, {{109, 0}, false}, {{109, 9}, true}};
  for (const auto& [place, hit] : places) {
    levels().setGamma(1, kRed);
    press(*gutter, place);
    drag(*gutter, place + QPointF(-20, 40));
    release(*gutter, place);
    EXPECT_EQ(levels().gammaForChannel(kRed) != 1, hit) << place.x() << ", " << place.y();
  }
  EXPECT_EQ(half, VRTHistogramPositionOfGamma(0, 1, 1));
}

TEST_F(HistogramGutterIn, OfOverlappingHandlesTheLastDrawnIsTaken) {
  levels().setBlackIn(0.5, kRed);
  levels().setWhiteIn(0.5, kRed);  // and gamma between them
  press(*gutter, on(0.5));
  drag(*gutter, on(0.6));
  release(*gutter, on(0.6));
  EXPECT_EQ(levels().gammaForChannel(kRed), 0) << "right of white";
  EXPECT_EQ(levels().blackInForChannel(kRed), 0.5);
  EXPECT_EQ(levels().whiteInForChannel(kRed), 0.5);

  levels().setBlackIn(0.48, kRed);
  levels().setWhiteIn(0.5, kRed);
  levels().setGamma(0, kRed);  // on white, which lies over black
  levels().setWhiteIn(0.5, kRed);
  levels().setGamma(-2, kRed);  // at 0.56
  press(*gutter, {208 * 0.5 + 1, 6});
  drag(*gutter, {208 * 0.75 + 1, 6});
  release(*gutter, {});
  EXPECT_DOUBLE_EQ(levels().whiteInForChannel(kRed), 0.75);
  EXPECT_DOUBLE_EQ(levels().blackInForChannel(kRed), 0.48);
}

TEST_F(HistogramGutterIn, GammaStopsAtBothEnds) {
  levels().setBlackIn(0.25, kRed);
  levels().setWhiteIn(0.75, kRed);
  press(*gutter, on(0.5));
  for (const double beyond : {0.25, 0.1, -4.0}) {
    drag(*gutter, on(beyond));
    EXPECT_EQ(levels().gammaForChannel(kRed), 5) << beyond;
  }
  for (const double beyond : {0.75, 0.9, 4.0}) {
    drag(*gutter, on(beyond));
    EXPECT_EQ(levels().gammaForChannel(kRed), 0) << beyond;
  }
  drag(*gutter, on(0.5));
  EXPECT_NEAR(levels().gammaForChannel(kRed), 1, 1e-9) << "the way is counted from the press";
}

TEST_F(HistogramGutterIn, BlackAndWhiteMayCross) {
  dragFromTo(0, 0.8);
  dragFromTo(1, 0.3);
  EXPECT_DOUBLE_EQ(levels().blackInForChannel(kRed), 0.8);
  EXPECT_DOUBLE_EQ(levels().whiteInForChannel(kRed), 0.3);
  dragFromTo(0.55, 0.425);  // gamma, three quarters of the way from black to white
  EXPECT_NEAR(levels().gammaForChannel(kRed), std::log(0.75) / std::log(0.5), 1e-6);
}

TEST_F(HistogramGutterIn, HandlesAreDrawnWhereTheyAreGrabbed) {
  const auto picture = [&] { return gutter->grab().toImage(); };
  const auto differsAt = [&](const QImage& a, const QImage& b, double value) {
    const double ratio = gutter->devicePixelRatioF();
    const int x = int(on(value).x() * ratio);
    for (int y = 0; y < a.height(); ++y) {
      if (a.pixel(x, y) != b.pixel(x, y)) return true;
    }
    return false;
  };
  scene.levels->setValue(nullptr);
  const QImage empty = picture();
  scene.levels->setValue(scene.value);
  const QImage all = picture();
  for (const double place : {0.0, 0.5, 1.0}) EXPECT_TRUE(differsAt(empty, all, place)) << place;
  for (const double place : {0.25, 0.75}) EXPECT_FALSE(differsAt(empty, all, place)) << place;
  const auto middle = [&](double value) {
    const double ratio = gutter->devicePixelRatioF();
    return qGray(all.pixel(int(on(value).x() * ratio), int(6.5 * ratio)));
  };
  EXPECT_LT(middle(0), middle(0.5));
  EXPECT_LT(middle(0.5), middle(1));
  press(*gutter, on(0));
  EXPECT_EQ(picture(), all) << "a grabbed handle looks no different";
  release(*gutter, on(0));
  for (const double strange : {std::nan(""), 1e300, -1e300}) {
    levels().setBlackIn(strange, kRed);
    gutter->grab();
  }
}

TEST_F(HistogramGutterIn, KeysMoveTheHandleThatHasTheKeyboard) {
  QApplication::setActiveWindow(gutter.get());
  gutter->setFocus(Qt::TabFocusReason);
  QTest::keyClick(gutter.get(), Qt::Key_Right);
  EXPECT_DOUBLE_EQ(levels().blackInForChannel(kRed), 0.01);
  EXPECT_EQ(listener.take(), (Listener::Told{"StartInteraction", "value", "EndInteraction"}));
  QTest::keyClick(gutter.get(), Qt::Key_Right, Qt::ShiftModifier);
  EXPECT_DOUBLE_EQ(levels().blackInForChannel(kRed), 0.011);
  QTest::keyClick(gutter.get(), Qt::Key_Home);
  EXPECT_EQ(levels().blackInForChannel(kRed), 0);
  listener.take();
  QTest::keyClick(gutter.get(), Qt::Key_Left);
  EXPECT_EQ(listener.take(), Listener::Told()) << "nothing changed";

  QTest::keyPress(gutter.get(), Qt::Key_Right);
  QTest::keyPress(gutter.get(), Qt::Key_Right);
  QTest::keyRelease(gutter.get(), Qt::Key_Right);
  EXPECT_EQ(listener.take(), (Listener::Told{"StartInteraction", "value", "value", "EndInteraction"}));
  levels().setBlackIn(0, kRed);

  QTest::keyClick(gutter.get(), Qt::Key_Tab);  // gamma, whose handle goes to the left
  QTest::keyClick(gutter.get(), Qt::Key_Left);
  EXPECT_NEAR(levels().gammaForChannel(kRed), std::log(0.49) / std::log(0.5), 1e-9);
  QTest::keyClick(gutter.get(), Qt::Key_Tab);
  QTest::keyClick(gutter.get(), Qt::Key_Down);
  EXPECT_DOUBLE_EQ(levels().whiteInForChannel(kRed), 0.99);
  levels().setBlackIn(0.99, kRed);
  levels().setGamma(1, kRed);
  QTest::keyClick(gutter.get(), Qt::Key_Backtab);
  QTest::keyClick(gutter.get(), Qt::Key_Left);
  EXPECT_EQ(levels().gammaForChannel(kRed), 1) << "there is no way to go";

  listener.take();
  QTest::keyClick(gutter.get(), Qt::Key_A);
  EXPECT_EQ(listener.take(), Listener::Told());
  QTest::keyClick(gutter.get(), Qt::Key_Backtab);
  QTest::keyPress(gutter.get(), Qt::Key_Left);
  gutter->clearFocus();
  EXPECT_EQ(listener.take(), (Listener::Told{"StartInteraction", "value", "EndInteraction"}));
}

TEST_F(HistogramGutterIn, AssistiveTechnologySeesSliders) {
  readEnglishTexts();
  const auto elements = gutter->accessibilityElements();
  ASSERT_EQ(elements.size(), 3u);
  EXPECT_EQ(elements[0].name, "Input black");
  EXPECT_EQ(elements[1].name, "Gamma");
  EXPECT_EQ(elements[1].maximum, 5);
  EXPECT_EQ(elements[2].value, 1);
  gutter->setAccessibilityValue(1, 9);
  EXPECT_EQ(levels().gammaForChannel(kRed), 5);
  EXPECT_EQ(listener.take(), (Listener::Told{"StartInteraction", "value", "EndInteraction"}));
  gutter->setAccessibilityValue(3, 1);
  gutter->setAccessibilityValue(0, std::nan(""));
  EXPECT_EQ(listener.take(), Listener::Told());
  scene.levels->setValue(nullptr);
  EXPECT_TRUE(gutter->accessibilityElements().empty());
}

TEST_F(HistogramGutterIn, ThePointerShowsWhatCanBeDragged) {
  EXPECT_EQ(gutter->cursorAtPoint({5, 4})->shape(), Qt::SizeHorCursor);
  EXPECT_EQ(gutter->cursorAtPoint({60, 4}), std::nullopt);
  press(*gutter, on(0));
  EXPECT_EQ(gutter->cursorAtPoint({60, 4})->shape(), Qt::SizeHorCursor);
  release(*gutter, on(0));
}

TEST_F(HistogramGutterIn, ADragGoesOnInAReplacedValue) {
  press(*gutter, on(0));
  const auto replaced = std::make_shared<VRTHistogram>();
  replaced->setSelectedChannel(3);
  scene.levels->setValue(replaced);
  drag(*gutter, on(0.5));
  EXPECT_DOUBLE_EQ(replaced->blackInForChannel(3), 0.5);
  EXPECT_EQ(scene.value->blackInForChannel(kRed), 0);
  scene.levels->setValue(nullptr);
  drag(*gutter, on(0.6));
  listener.take();
  release(*gutter, on(0.6));
  EXPECT_EQ(listener.take(), kEnd);
}

TEST_F(HistogramGutterIn, EndsThatNeverCameAreMadeUpFor) {
  press(*gutter, on(0));
  gutter->hide();
  EXPECT_EQ(listener.take(), (Listener::Told{"StartInteraction", "EndInteraction"}));
  gutter->show();
  drag(*gutter, on(0.3));
  release(*gutter, on(0.3));
  EXPECT_EQ(listener.take(), Listener::Told());
  press(*gutter, on(0));
  press(*gutter, on(0));
  EXPECT_EQ(listener.take(), (Listener::Told{"StartInteraction", "EndInteraction", "StartInteraction"}));
  gutter.reset();
  EXPECT_EQ(listener.take(), kEnd);
}

TEST_F(HistogramGutterIn, ObserversMayDestroyTheGutter) {
  const auto destroyOn = [&](const std::string& what) {
    gutter = std::make_unique<VRTHistogramGutterIn>(kFrame);
    gutter->setHistogramPort(scene.levels.get());
    gutter->show();
    listener.take();
    listener.onTold = [this, what](const std::string& told) {
      if (told == what) gutter.reset();
    };
  };
  for (const std::string what : {"StartInteraction", "value", "EndInteraction"}) {
    destroyOn(what);
    const QPointer<QWidget> victim(gutter.get());
    press(*victim, on(scene.value->blackInForChannel(kRed)));
    if (victim) drag(*victim, on(0.3));
    if (victim) release(*victim, on(0.3));
    EXPECT_FALSE(victim) << what;

    destroyOn(what);
    QApplication::setActiveWindow(gutter.get());
    gutter->setFocus(Qt::TabFocusReason);
    const QPointer<QWidget> byKey(gutter.get());
    QTest::keyPress(byKey.data(), Qt::Key_Right);
    if (byKey) QTest::keyRelease(byKey.data(), Qt::Key_Right);
    EXPECT_FALSE(byKey) << what;
    listener.onTold = nullptr;
  }
}

TEST_F(HistogramGutterIn, ThePortMayDieInADrag) {
  press(*gutter, on(0));
  Scene other;
  std::swap(scene.patch, other.patch);
  other.patch.reset();
  other.levels.reset();
  scene.patch.reset();
  scene.image.reset();
  scene.levels.reset();
  drag(*gutter, on(0.5));
  release(*gutter, on(0.5));
  EXPECT_EQ(gutter->getHistogramChannel(), nullptr);
  gutter->grab();
}

}  // namespace
