// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSViewAccessibility.h"
#include "Tests/Support/EnglishTexts.h"
#include "Tests/Support/LevelsScene.h"

#include <QAccessible>

// What mouse and keyboard do to the levels; what is the same in every editor's gutters is among the tests of Editors.

namespace {

constexpr int kRed = LevelsScene::kRed;
constexpr NSPoint on(double value) {
  return LevelsScene::on(value);
}

struct Input {
  double black, white, gamma;
};

struct InputGutter : testing::Test {
  VRTHistogram& levels() const { return scene.histogram(); }
  void expectInput(const Input& expected) const {
    EXPECT_DOUBLE_EQ(levels().blackInForChannel(kRed), expected.black);
    EXPECT_DOUBLE_EQ(levels().whiteInForChannel(kRed), expected.white);
    EXPECT_NEAR(levels().gammaForChannel(kRed), expected.gamma, 1e-6);
  }
  void set(const Input& input) const {
    levels().setBlackIn(input.black, kRed);
    levels().setWhiteIn(input.white, kRed);
    levels().setGamma(input.gamma, kRed);
  }

  LevelsScene scene;
};

TEST_F(InputGutter, DragsEveryHandleOfItsChannel) {
  constexpr double beside = 4 / 208.0;
  const struct {
    Input before;
    double from, to;
    Input after;
  } drags[] = {
      {{0, 1, 1}, 0, 0.25, {0.25, 1, 1}},
      {{0.25, 1, 1}, 1, 0.75, {0.25, 0.75, 1}},
      {{0.25, 0.75, 1}, 0.5, 0.375, {0.25, 0.75, 2}},
      // Black and white may cross; gamma is three quarters of the way from black to white.
      {{0, 1, 1}, 0, 0.8125, {0.8125, 1, 1}},
      {{0.8125, 1, 1}, 1, 0.3125, {0.8125, 0.3125, 1}},
      {{0.8125, 0.3125, 1}, 0.5625, 0.4375, {0.8125, 0.3125, std::log(0.75) / std::log(0.5)}},
      // Gamma stops at both ends.
      {{0.25, 0.75, 1}, 0.5, 0.25, {0.25, 0.75, 5}},
      {{0.25, 0.75, 1}, 0.5, -4, {0.25, 0.75, 5}},
      {{0.25, 0.75, 1}, 0.5, 0.75, {0.25, 0.75, 0}},
      {{0.25, 0.75, 1}, 0.5, 4, {0.25, 0.75, 0}},
      // Of handles that overlap the last drawn is taken: gamma over black, and white over a gamma at 0.56.
      {{0.5, 0.5, 1}, 0.5, 0.625, {0.5, 0.5, 0}},
      {{0.48, 0.5, -2}, 0.5 - beside, 0.75 - beside, {0.48, 0.75, -2}},
  };
  for (const auto& [before, from, to, after] : drags) {
    set(before);
    scene.press(on(from));
    for (const double place : {-4.0, 4.0, to}) scene.move(on(place));
    scene.release();
    expectInput(after);
  }
  EXPECT_EQ(levels().blackOutForChannel(kRed), 0);
  for (const int other : {0, 2, 3, 4}) {
    EXPECT_TRUE(levels().blackInForChannel(other) == 0 && levels().whiteInForChannel(other) == 1);
    EXPECT_EQ(levels().gammaForChannel(other), 1);
  }
}

TEST(OutputGutter, DragsEveryHandleOfItsChannel) {
  LevelsScene scene(true);
  const VRTHistogram& levels = scene.histogram();
  const double drags[][4] = {
      {0, 0.5, 0.5, 1}, {1, 0.25, 0.5, 0.25}, {0.5, -3, 0, 0.25}, {0.25, 3, 0, 1}};  // black and white may cross
  for (const auto& [from, to, black, white] : drags) {
    scene.drag(on(from), on(to));
    EXPECT_DOUBLE_EQ(levels.blackOutForChannel(kRed), black);
    EXPECT_DOUBLE_EQ(levels.whiteOutForChannel(kRed), white);
  }
  EXPECT_TRUE(levels.blackInForChannel(kRed) == 0 && levels.gammaForChannel(kRed) == 1);
}

TEST_F(InputGutter, HandlesAreHalfOpenRectangles) {
  // Gamma: 104 to 115 across, 0 to 9 upwards.
  const std::pair<NSPoint, bool> places[] = {{{104, 3}, true}, {{103, 3}, false}, {{114, 3}, true}, {{115, 3}, false},
                                             {{109, 8}, true}, {{109, 9}, false}, {{109, 0}, true}};
  for (const auto& [place, hit] : places) {
    set({0, 1, 1});
    scene.drag(place, {place.x - 20, place.y - 30});
    EXPECT_EQ(levels().gammaForChannel(kRed) != 1, hit) << place.x << ", " << place.y;
  }
}

TEST_F(InputGutter, DrawsHandlesWhereTheyAreGrabbed) {
  const auto picture = [&] { return scene.gutter->grab().toImage(); };
  const double ratio = scene.gutter->devicePixelRatioF();
  scene.levels->setValue(nullptr);
  const QImage empty = picture();
  scene.levels->setValue(scene.value);
  const QImage all = picture();
  int last = -1;
  for (const double place : {0.0, 0.25, 0.5, 0.75, 1.0}) {
    const int x = int(on(place).x * ratio);
    const QRect column(x, 0, 1, all.height());
    const bool drawn = place * 2 == std::floor(place * 2);
    EXPECT_EQ(empty.copy(column) != all.copy(column), drawn) << place;
    const int middle = qGray(all.pixel(x, int(6.5 * ratio)));
    EXPECT_TRUE(!drawn || middle > std::exchange(last, middle)) << "from black to white";
  }
  scene.press(on(0));
  EXPECT_EQ(picture(), all) << "a grabbed handle looks no different";
  scene.release();
  for (const double strange : {std::nan(""), 1e300, -1e300}) {
    levels().setBlackIn(strange, kRed);
    picture();
  }
}

TEST_F(InputGutter, KeysMoveTheHandleThatHasTheKeyboard) {
  scene.focus();
  const std::string told = "start change end";
  const double gamma = std::log(0.49) / std::log(0.5);  // whose handle goes to the left
  const struct {
    int key;
    Input after;
    std::string told;
    Qt::KeyboardModifiers modifiers = {};
  } keys[] = {{Qt::Key_Right, {0.01, 1, 1}, told},
              {Qt::Key_Up, {0.011, 1, 1}, told, Qt::ShiftModifier},
              {Qt::Key_Home, {0, 1, 1}, told},
              {Qt::Key_Left, {0, 1, 1}, ""},
              {Qt::Key_A, {0, 1, 1}, ""},
              {Qt::Key_Tab, {0, 1, 1}, ""},
              {Qt::Key_Left, {0, 1, gamma}, told},
              {Qt::Key_Tab, {0, 1, gamma}, ""},
              {Qt::Key_Down, {0, 0.99, gamma}, told}};
  for (const auto& each : keys) {
    scene.key(each.key, each.modifiers);
    expectInput(each.after);
    EXPECT_EQ(scene.takeLog(), each.told) << &each - keys;
  }
  set({0.99, 0.99, 1});
  scene.key(Qt::Key_Backtab);
  scene.key(Qt::Key_Left);
  expectInput({0.99, 0.99, 1});  // there is no way to go
  scene.takeLog();
  scene.key(Qt::Key_Backtab);
  scene.keyDown(Qt::Key_Left);
  scene.key(Qt::Key_Tab);
  EXPECT_EQ(scene.takeLog(), "start change end") << "the next handle is another gesture";
}

TEST_F(InputGutter, ShowsSlidersAndCursors) {
  readEnglishTexts();
  NSTarnView& gutter = *scene.gutter;
  const auto elements = gutter.accessibilityElements();
  ASSERT_EQ(elements.size(), 3u);
  EXPECT_EQ(elements[0].name + ", " + elements[1].name, "Input black, Gamma");
  EXPECT_TRUE(elements[1].maximum == 5 && elements[2].value == 1);
  gutter.setAccessibilityValue(1, 9);
  EXPECT_EQ(levels().gammaForChannel(kRed), 5);
  scene.takeLog();
  gutter.setAccessibilityValue(3, 1);
  gutter.setAccessibilityValue(0, std::nan(""));
  EXPECT_EQ(scene.takeLog(), "");

  EXPECT_EQ(gutter.cursorAtPoint({5, 4})->shape(), Qt::SizeHorCursor);
  EXPECT_EQ(gutter.cursorAtPoint({60, 4}), std::nullopt);
  scene.press(on(0));
  EXPECT_EQ(gutter.cursorAtPoint({60, 4})->shape(), Qt::SizeHorCursor);
  scene.release();
  scene.levels->setValue(nullptr);
  EXPECT_TRUE(gutter.accessibilityElements().empty());
}

// Between points, as pointers stand on screens of other ratios than 1.
TEST_F(InputGutter, ADragThatReturnsToItsPixelRestoresEveryValue) {
  const double fraction = 1 / 3.0;
  const auto at = [&](QEvent::Type type, double x, Qt::MouseButtons held) {
    const QPointF place(x + fraction, scene.gutter->height() - 4);
    QMouseEvent event(type, place, scene.gutter->mapToGlobal(place),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held, {});
    QCoreApplication::sendEvent(scene.gutter, &event);
  };
  for (const double gamma : {0.3, 1.0, 1.7, 4.9}) {
    set({0.1, 0.9, gamma});
    for (const double position : {0.1, 0.9, 0.1 + 0.8 * std::pow(0.5, gamma)}) {
      const double x = std::floor(on(position).x);
      at(QEvent::MouseButtonPress, x, Qt::LeftButton);
      at(QEvent::MouseMove, x + 20, Qt::LeftButton);
      at(QEvent::MouseMove, x, Qt::LeftButton);
      at(QEvent::MouseButtonRelease, x, Qt::NoButton);
      EXPECT_EQ(levels().blackInForChannel(kRed), 0.1);
      EXPECT_EQ(levels().whiteInForChannel(kRed), 0.9);
      EXPECT_EQ(levels().gammaForChannel(kRed), gamma);
    }
  }
}

TEST_F(InputGutter, AnnouncesWhichHandleHasTheKeyboard) {
  readEnglishTexts();
  std::string heard;
  NSListenToAccessibility([&](QAccessibleEvent& event) {
    if (event.type() != QAccessible::Focus || !event.accessibleInterface()) return;
    heard += event.accessibleInterface()->text(QAccessible::Name).toStdString() + ", ";
  });
  scene.focus();
  QCoreApplication::processEvents();
  for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Left, Qt::Key_Backtab}) scene.key(key);
  QAccessible::queryAccessibleInterface(scene.gutter)
      ->child(0)
      ->actionInterface()
      ->doAction(QAccessibleActionInterface::setFocusAction());
  EXPECT_EQ(heard, "Input black, Gamma, Input white, Gamma, Input black, ");
  NSListenToAccessibility(nullptr);
}

TEST_F(InputGutter, ADragGoesOnInAReplacedValue) {
  scene.press(on(0));
  const auto replaced = std::make_shared<VRTHistogram>();
  replaced->setSelectedChannel(3);
  scene.levels->setValue(replaced);
  scene.move(on(0.5));
  EXPECT_DOUBLE_EQ(replaced->blackInForChannel(3), 0.5);
  EXPECT_EQ(scene.value->blackInForChannel(kRed), 0);
  scene.levels->setValue(nullptr);
  scene.move(on(0.625));
  scene.takeLog();
  scene.release();
  EXPECT_EQ(scene.takeLog(), "end");
  scene.press(on(0));
  scene.move(on(0.1));
  EXPECT_EQ(scene.takeLog(), "") << "no levels, no start";
  scene.release();
  EXPECT_EQ(scene.takeLog(), "end") << "the end is told always";
}

}  // namespace
