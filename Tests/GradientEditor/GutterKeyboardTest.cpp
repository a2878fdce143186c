// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/GradientEditor/Panel.h"
#include "Tests/Support/EnglishTexts.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>

// What people without a mouse, or who cannot see the panel, have.

class GutterKeyboard : public testing::TestWithParam<bool> {
 protected:
  GutterKeyboard() {
    panel.window->activateWindow();
    panel.gutter->setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(QTest::qWaitForWindowActive(panel.window.get()));
  }
  ~GutterKeyboard() override {
    if (auto* picker = VRTTransientColorPicker::current()) picker->cancel();
  }
  void select(std::size_t index, bool middle = false) {
    panel.editor->setSelectedSample(panel.sample(index), middle, false);
  }
  VRTChannelGradientSample* selected() const { return panel.editor->getSelectedSample(); }

  Panel panel{236, GetParam()};
};

INSTANTIATE_TEST_SUITE_P(, GutterKeyboard, testing::Bool(),
                         [](const auto& each) { return each.param ? "Opacity" : "Color"; });

TEST_P(GutterKeyboard, ArrowsMoveTheSelectedSample) {
  select(1);
  VRTChannelGradientSample* sample = selected();
  const struct {
    int key;
    Qt::KeyboardModifiers modifiers;
    double expected;
  } keys[] = {{Qt::Key_Right, {}, 0.26},
              {Qt::Key_Left, {}, 0.25},
              {Qt::Key_Up, Qt::ShiftModifier, 0.251},
              {Qt::Key_Down, {}, 0.241},
              {Qt::Key_Left, Qt::ShiftModifier, 0.24}};
  for (const auto& each : keys) {
    panel.key(each.key, each.modifiers);
    EXPECT_NEAR(sample->position, each.expected, 1e-12);
    EXPECT_EQ(panel.takeLog(), "start change change end");
  }
}

TEST_P(GutterKeyboard, AHeldKeyIsOneInteraction) {
  select(1);
  VRTChannelGradientSample* sample = selected();
  QWindow* window = panel.window->windowHandle();
  QTest::keyPress(window, Qt::Key_Right);
  for (int i = 0; i < 3; ++i) {
    QKeyEvent again(QEvent::KeyPress, Qt::Key_Right, {}, {}, true);
    QKeyEvent stillDown(QEvent::KeyRelease, Qt::Key_Right, {}, {}, true);
    QApplication::sendEvent(panel.gutter, &stillDown);
    QApplication::sendEvent(panel.gutter, &again);
  }
  QTest::keyPress(window, Qt::Key_Up);
  QTest::keyRelease(window, Qt::Key_Right);
  EXPECT_EQ(panel.takeLog(), "start change change change change change");
  QTest::keyRelease(window, Qt::Key_Up);
  EXPECT_EQ(panel.takeLog(), "change end");
  EXPECT_NEAR(sample->position, 0.3, 1e-12);

  QTest::keyPress(window, Qt::Key_Left);
  panel.takeLog();
  panel.part("rgbSpread")->setFocus();
  EXPECT_EQ(panel.takeLog(), "change end") << "the key will be let go elsewhere";
  QTest::keyRelease(window, Qt::Key_Left);
  EXPECT_EQ(panel.takeLog(), "");
}

TEST_P(GutterKeyboard, HomeAndEndStopShortOfOthers) {
  select(2);
  VRTChannelGradientSample* sample = selected();
  panel.key(Qt::Key_Home);
  EXPECT_NEAR(sample->position, 0.001, 1e-12);
  panel.key(Qt::Key_End);
  EXPECT_NEAR(sample->position, 0.999, 1e-12);
  EXPECT_EQ(panel.folder().getNumberOfDescendants(), 4u) << "nothing merged";
  EXPECT_EQ(selected(), sample);
  panel.takeLog();
  panel.key(Qt::Key_End);
  EXPECT_EQ(panel.takeLog(), "") << "nothing changed";
  panel.editor->setSelectedSample(panel.sample(3), false, false);
  panel.key(Qt::Key_Right);
  EXPECT_EQ(panel.takeLog(), "") << "at the end already";
}

TEST_P(GutterKeyboard, MiddlePointsMoveToo) {
  select(1, true);
  panel.key(Qt::Key_Right);
  EXPECT_NEAR(selected()->middle, 0.51, 1e-12);
  panel.key(Qt::Key_End);
  EXPECT_EQ(selected()->middle, 1);
  EXPECT_EQ(panel.takeLog(), "start change change end start change change end");
  panel.key(Qt::Key_Delete);
  panel.key(Qt::Key_Return);
  EXPECT_EQ(panel.takeLog(), "") << "a middle point is neither removed nor colored";
  EXPECT_EQ(VRTTransientColorPicker::current(), nullptr);
}

TEST_P(GutterKeyboard, NeighboursAreSelectedWithoutAChange) {
  panel.key(Qt::Key_Right);
  EXPECT_EQ(selected(), panel.sample(0)) << "nothing was selected";
  panel.key(Qt::Key_PageDown);
  panel.key(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(selected(), panel.sample(2));
  panel.key(Qt::Key_PageUp);
  EXPECT_EQ(selected(), panel.sample(1));
  EXPECT_EQ(panel.takeLog(), "");
  EXPECT_EQ(panel.positions(), (std::vector<double>{0, 0.25, 0.6, 1}));
}

TEST_P(GutterKeyboard, DeleteRemovesAllButTheLast) {
  for (std::size_t left = 3; left > 0; --left) {
    select(0);
    panel.key(left % 2 ? Qt::Key_Delete : Qt::Key_Backspace);
    EXPECT_EQ(panel.folder().getNumberOfDescendants(), left);
    EXPECT_EQ(selected(), nullptr);
    EXPECT_EQ(panel.takeLog(), "start change end");
  }
  select(0);
  panel.key(Qt::Key_Delete);
  EXPECT_EQ(panel.folder().getNumberOfDescendants(), 1u);
  EXPECT_EQ(panel.takeLog(), "");
}

TEST_P(GutterKeyboard, EnterPicksInOneInteraction) {
  select(1);
  panel.key(Qt::Key_Return);
  EXPECT_EQ(panel.takeLog(), "start");
  ASSERT_NE(VRTTransientColorPicker::panel(), nullptr);
  QTest::keyClick(VRTTransientColorPicker::panel(), Qt::Key_Right);
  EXPECT_EQ(panel.takeLog(), "change");
  QTest::keyClick(VRTTransientColorPicker::panel(), Qt::Key_Down);
  panel.takeLog();
  QTest::keyClick(VRTTransientColorPicker::panel(), Qt::Key_Return);
  EXPECT_EQ(panel.takeLog(), "end");
  EXPECT_EQ(VRTTransientColorPicker::current(), nullptr);
}

TEST_P(GutterKeyboard, OtherKeysAndDisabledGuttersPassKeysOn) {
  select(1);
  for (const int key : {int{Qt::Key_A}, int{Qt::Key_Escape}, int{Qt::Key_Space}}) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(panel.gutter, &event);
    EXPECT_FALSE(event.isAccepted());
  }
  panel.editor->setEnabled(false);
  EXPECT_EQ(panel.gutter->focusPolicy(), Qt::NoFocus);
  QKeyEvent event(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier);
  QApplication::sendEvent(panel.gutter, &event);
  EXPECT_FALSE(event.isAccepted());
  EXPECT_EQ(panel.positions()[1], 0.25);
}

TEST_P(GutterKeyboard, KeysMoveNoSampleOfTheOtherGutter) {
  VRTChannelGradient& channel = *panel.value->kxChannelGradient();
  VRTChannelGradientFolder& other =
      GetParam() ? static_cast<VRTChannelGradientFolder&>(channel.rgbFolder) : channel.alphaFolder;
  auto* foreign = dynamic_cast<VRTChannelGradientSample*>(other.getDescendants()[1]);
  panel.editor->setSelectedSample(foreign, false, false);
  panel.key(Qt::Key_Delete);
  panel.key(Qt::Key_Return);
  panel.key(Qt::Key_Right);
  EXPECT_EQ(foreign->position, 0.25);
  EXPECT_EQ(panel.takeLog(), "");
  EXPECT_EQ(selected(), panel.sample(0)) << "the arrow took one of its own";
}

TEST_P(GutterKeyboard, StopsAreSlidersToAssistiveTechnology) {
  readEnglishTexts();
  select(1);
  const auto elements = panel.gutter->accessibilityElements();
  ASSERT_EQ(elements.size(), 4u);
  EXPECT_EQ(elements[1].name, GetParam() ? "Opacity stop 2 of 4" : "Color stop 2 of 4");
  EXPECT_EQ(elements[1].value, 0.25);
  EXPECT_TRUE(elements[1].selected);
  EXPECT_FALSE(elements[2].selected);
  EXPECT_EQ(elements[3].frame.origin.x, panel.geometry().xOfPosition(1) - 5);

  QAccessibleInterface* view = QAccessible::queryAccessibleInterface(panel.gutter);
  ASSERT_NE(view, nullptr);
  EXPECT_EQ(view->text(QAccessible::Name), GetParam() ? "Opacity stops" : "Color stops");
  ASSERT_EQ(view->childCount(), 4);
  ASSERT_NE(view->child(2)->valueInterface(), nullptr);
  view->child(2)->valueInterface()->setCurrentValue(0.75);
  EXPECT_EQ(panel.positions()[2], 0.75);
  EXPECT_EQ(selected(), panel.sample(2));
  EXPECT_EQ(panel.takeLog(), "start change change end");
  panel.gutter->setAccessibilityValue(99, 0.5);
  panel.gutter->setAccessibilityValue(1, 1);
  EXPECT_NEAR(panel.positions()[2], 0.999, 1e-12) << "short of the last one";
  EXPECT_EQ(panel.folder().getNumberOfDescendants(), 4u);
}

TEST_P(GutterKeyboard, TooltipsAndCursorsTellWhatTheMouseWouldDo) {
  panel.folder().sortAndRename();
  panel.gutter->update();
  const double x = panel.xOf(0.6);
  EXPECT_EQ(panel.gutter->toolTipAtPoint({x, 5}), GetParam() ? "Alpha3" : "RGB3");
  EXPECT_EQ(panel.gutter->toolTipAtPoint({x + 20, 5}), "");
  EXPECT_TRUE(panel.gutter->toolTipAtPoint({x + 20, 20}).contains("Alt"));
  EXPECT_EQ(panel.gutter->cursorAtPoint({x, 5})->shape(), Qt::SizeHorCursor);
  EXPECT_EQ(panel.gutter->cursorAtPoint({x + 20, 20})->shape(), Qt::CrossCursor);
  EXPECT_FALSE(panel.gutter->cursorAtPoint({x + 20, 5}));

  panel.press({x, 5});
  panel.move({x + 30, 5});
  EXPECT_EQ(panel.gutter->toolTipAtPoint({x, 5}), GetParam() ? "Alpha3" : "RGB3") << "kept until the drag ends";
  panel.release();
  EXPECT_EQ(panel.gutter->toolTipAtPoint({x + 30, 5}), GetParam() ? "Alpha3" : "RGB3");
  EXPECT_EQ(panel.gutter->toolTipAtPoint({x, 5}), "");
}

TEST(Keyboard, TabGoesThroughThePanelFromTheTop) {
  Panel panel;
  panel.window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(panel.window.get()));
  panel.part("gradientGutterAlpha")->setFocus();
  for (const char* name : {"alphaSpread", "alphaFlop", "gradientGutterRGB", "rgbSpread", "rgbFlop"}) {
    panel.key(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), panel.part(name)) << name;
  }
}
