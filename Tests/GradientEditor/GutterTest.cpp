// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSViewAccessibility.h"
#include "Tests/Support/EnglishTexts.h"
#include "Tests/Support/GradientScene.h"
#include "Tests/TarnKit/RecordingView.h"

#include <QAccessible>
#include <QKeyEvent>

// What mouse and keyboard do to the model and the selection, in both gutters (the opacity gutter is flipped), one of
// them in a wide panel; what is the same in every editor's gutters is among the tests of Editors.

namespace {

constexpr double kBand = 5;    // a row of the marker band
constexpr double kStrip = 20;  // a row of the strip
using Positions = std::vector<double>;

}  // namespace

class GradientGutter : public testing::TestWithParam<bool> {
 protected:
  bool alpha() const { return GetParam(); }
  // Where a sample comes to stand that is dragged by whole points.
  double dragged(double from, double points) const { return from + points / scene.span(); }
  NSPoint band(double position) const { return {scene.xOf(position), kBand}; }
  const char* named(const char* color, const char* opacity) const { return alpha() ? opacity : color; }

  GradientScene scene{GetParam(), GetParam() ? 733 : 236};
};

INSTANTIATE_TEST_SUITE_P(, GradientGutter, testing::Bool(),
                         [](const auto& each) { return each.param ? "Opacity" : "Color"; });

TEST_P(GradientGutter, ClickOnTheStripInsertsASampleThatKeepsTheLookAndDragsIt) {
  const double x = scene.xOf(0.45), position = (x - 5) / scene.span();
  VortoColor before, after;
  scene.value->kxChannelGradient()->getColor(0, position, &before);
  scene.press({x, kStrip});
  ASSERT_EQ(scene.count(), 5u);
  VRTChannelGradientSample* inserted = scene.sample(4);
  EXPECT_EQ(scene.selected(), inserted);
  EXPECT_DOUBLE_EQ(inserted->position, position);
  EXPECT_EQ(inserted->getID(), 0);
  scene.value->kxChannelGradient()->getColor(0, position, &after);
  EXPECT_NEAR(before.c1, after.c1, 1e-6);
  EXPECT_NEAR(before.alpha, after.alpha, 1e-6);
  EXPECT_EQ(scene.takeLog(), "start") << "the sample shows with what follows";

  scene.move({x + 40, kStrip});
  EXPECT_DOUBLE_EQ(inserted->position, dragged(position, 40));
  scene.release();
  EXPECT_EQ(scene.selected(), inserted);
  const Positions positions = scene.positions();
  EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end()));
  const std::unique_ptr<char, decltype(&std::free)> name(scene.sample(4)->getName().createUTF8Str(), std::free);
  EXPECT_STREQ(name.get(), named("RGB5", "Alpha5"));

  scene.press({2, kStrip});
  EXPECT_DOUBLE_EQ(scene.sample(5)->position, -3 / scene.span()) << "beside the track";
  scene.release();
}

TEST_P(GradientGutter, DragsStopAtTheEndsAndSort) {
  VRTChannelGradientSample* second = scene.sample(1);
  scene.press(band(0.25));
  EXPECT_EQ(scene.selected(), second);
  const struct {
    double x, position;
  } moves[] = {{scene.xOf(0.25) - 20, dragged(0.25, -20)}, {scene.xOf(1) + 300, 1}, {-200, 0}};
  for (const auto& [x, position] : moves) {
    scene.move({x, kBand});
    EXPECT_DOUBLE_EQ(second->position, position);
  }
  scene.move({scene.xOf(0.25) + std::round(scene.span() / 2), kBand});
  scene.release();
  EXPECT_EQ(scene.selected(), second);
  EXPECT_EQ(scene.sample(2), second) << "sorted behind the sample that it passed";

  EXPECT_FALSE(scene.gutterPart().keyframed());
  scene.gutterPart().setNeedsToBeKeyframed(true);
  scene.drag(band(0), band(1));
  EXPECT_TRUE(scene.gutterPart().keyframed());
  EXPECT_EQ(scene.count(), 3u) << "left on another";
  EXPECT_EQ(scene.selected(), nullptr) << "the later child of the folder stays";

  scene.clickSample(1);
  EXPECT_NE(scene.selected(), nullptr);
  scene.press({scene.xOf(0.1), kBand});
  EXPECT_EQ(scene.selected(), nullptr) << "the empty band";
  scene.release();
}

TEST_P(GradientGutter, OptionDragCopiesTheSampleThatWasClicked) {
  VRTChannelGradientSample* third = scene.sample(2);
  scene.press(band(0.6), Qt::AltModifier);
  ASSERT_EQ(scene.count(), 5u);
  VRTChannelGradientSample* copy = scene.sample(4);
  EXPECT_EQ(scene.selected(), copy);
  EXPECT_EQ(copy->position, 0.6);
  EXPECT_EQ(copy->getID(), 0);
  EXPECT_NE(third->getID(), 0);
  if (auto* color = dynamic_cast<VRTChannelGradientSampleRGB*>(copy)) {
    EXPECT_EQ(color->red, dynamic_cast<VRTChannelGradientSampleRGB*>(third)->red);
  }
  scene.move({scene.xOf(0.6) + 25, kBand});
  scene.release(Qt::AltModifier);
  EXPECT_EQ(third->position, 0.6);
  EXPECT_DOUBLE_EQ(copy->position, dragged(0.6, 25));
  scene.click(band(0.6), Qt::AltModifier);
  EXPECT_EQ(scene.count(), 5u) << "let go on the spot, the copy takes the source's place";
  scene.move(band(0));  // without the key
}

TEST_P(GradientGutter, MiddlePointsAreDraggedWithinTheirSegment) {
  scene.clickSample(3);
  scene.click({scene.middleX(0), kBand});
  EXPECT_EQ(scene.selected(), nullptr) << "away from the selection it is not hit";
  scene.clickSample(2);
  VRTChannelGradientSample* left = scene.sample(1);
  const double x = scene.middleX(1);
  scene.press({x, kBand});
  EXPECT_EQ(scene.selected(), left);
  EXPECT_TRUE(scene.editorPart().getMiddleSelected());
  scene.move({x + 12, kBand});
  EXPECT_DOUBLE_EQ(left->middle, 12 / scene.span() / (0.6 - 0.25) + 0.5);
  scene.move({x + 500, 60});
  EXPECT_EQ(left->middle, 1);
  scene.move({x - 500, -60});
  EXPECT_EQ(left->middle, 0) << "middle points are not dragged off";
  scene.release();
  EXPECT_EQ(scene.positions(), (Positions{0, 0.25, 0.6, 1}));
}

TEST_P(GradientGutter, ASampleDraggedOffIsDestroyedOnReleaseOrComesBack) {
  VRTChannelGradientSample* second = scene.sample(1);
  const std::unique_ptr<VRTChannelRef> ref = second->getRef();
  const double x = scene.xOf(0.25), fraction = scene.wholePoints() ? 0 : 1;
  scene.press(band(0.25));
  const struct {
    double rise;
    bool on;
  } moves[] = {
      {12 - fraction, true}, {13 + fraction, false}, {0, true}, {fraction - 13, true}, {-14 - fraction, false}};
  for (const auto& [rise, on] : moves) {
    scene.move({x + 8, kBand + rise});
    EXPECT_EQ(scene.count(), on ? 4u : 3u) << rise;
    EXPECT_EQ(scene.selected(), on ? second : nullptr) << rise;
    EXPECT_EQ(ref->getChannel(), second) << "pending";
  }
  EXPECT_TRUE(scene.gutterPart().deleteUndoHandled());
  scene.move({x + 8, kBand});
  EXPECT_EQ(scene.sample(3), second) << "restored at the end of the folder";
  EXPECT_DOUBLE_EQ(second->position, dragged(0.25, 8));
  scene.move({x, kBand + 30});
  EXPECT_EQ(scene.takeLog(), "start change change change change change change change");
  scene.release();
  EXPECT_EQ(ref->getChannel(), nullptr);
  EXPECT_EQ(scene.positions(), (Positions{0, 0.6, 1}));

  for (const int left : {2, 1, 1}) {
    scene.press(band(scene.sample(0)->position));
    scene.move({scene.xOf(0.3), 200});
    scene.release();
    EXPECT_EQ(scene.count(), std::size_t(left)) << "the last one just moves on";
  }
  EXPECT_GT(scene.sample(0)->position, 0.2);
}

TEST_P(GradientGutter, RightAndControlAndDoubleClicksOpenThePicker) {
  const auto closed = [] {
    auto* picker = VRTTransientColorPicker::current();
    if (picker) picker->cancel();
    return picker != nullptr;
  };
  scene.press(band(0.6), {}, Qt::RightButton);
  EXPECT_EQ(scene.selected(), scene.sample(2));
  EXPECT_TRUE(closed());
  scene.release({}, Qt::RightButton);
  scene.press({scene.middleX(2), kBand}, {}, Qt::RightButton);
  EXPECT_FALSE(closed()) << "a middle point has no color";
  scene.release({}, Qt::RightButton);
  EXPECT_EQ(scene.selected(), scene.sample(2));
  EXPECT_EQ(scene.takeLog(), "");

  scene.press(band(0.25), Qt::ControlModifier);
  EXPECT_EQ(scene.selected(), scene.sample(1));
  EXPECT_TRUE(closed());
  EXPECT_EQ(scene.takeLog(), "");
  scene.release(Qt::ControlModifier);
  EXPECT_EQ(scene.takeLog(), "change end") << "an end without a start";

  scene.doubleClick(band(0.6));
  EXPECT_TRUE(closed());
  EXPECT_EQ(scene.takeLog(), "start change end start change end");

  struct Delegate : VRTGradientEditorDelegate {
    void setSelectedSample(VRTChannelGradientSample* sample, bool middle, bool doubleClick) override {
      told.emplace_back(sample, middle + 2 * doubleClick);
    }
    std::vector<std::pair<VRTChannelGradientSample*, int>> told;
  } delegate;
  scene.editorPart().setDelegate(&delegate);
  scene.doubleClick(band(0.25));
  EXPECT_FALSE(closed()) << "that is left to the delegate";
  scene.doubleClick({scene.middleX(1), kBand});
  VRTChannelGradientSample* second = scene.sample(1);
  EXPECT_EQ(delegate.told, (decltype(delegate.told){{second, 0}, {second, 2}, {second, 1}, {second, 3}}));
}

TEST_P(GradientGutter, DisabledOrWithoutAGradientTheSuperviewGetsTheEvents) {
  RecordingView superview(NSMakeRect(0, 0, 300, 100));
  const NSRect frame = NSMakeRect(0, 0, 200, 26);
  VRTGradientGutter* gutter = nullptr;
  alpha() ? gutter = new VRTGradientGutterAlpha(frame) : gutter = new VRTGradientGutterRGB(frame);
  superview.addSubview(*gutter);
  superview.show();
  gutter->setGradientPort(scene.port.get());
  const auto use = [&] {
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
      QTest::mousePress(gutter, button, {}, QPoint(50, 20));
      QMouseEvent drag(QEvent::MouseMove, QPointF(60, 20), gutter->mapToGlobal(QPointF(60, 20)), Qt::NoButton, button,
                       {});
      QApplication::sendEvent(gutter, &drag);
      QTest::mouseRelease(gutter, button, {}, QPoint(60, 20));
      QCoreApplication::processEvents();
    }
    const std::string got = superview.names();
    superview.calls.clear();
    return got;
  };
  EXPECT_EQ(use(), "down dragged up down") << "not enabled; a right click arrives as mouseDown";
  EXPECT_EQ(scene.takeLog(), "");
  gutter->setEnabled(true);
  scene.port->setValue(nullptr);
  scene.takeLog();
  EXPECT_EQ(use(), "down dragged down") << "the release stays with an enabled gutter";
  EXPECT_EQ(scene.takeLog(), "change end");
}

// The keyboard.

TEST_P(GradientGutter, KeysMoveWhatIsSelected) {
  scene.focus();
  const struct {
    std::size_t sample;
    bool middle;
    int key;
    Qt::KeyboardModifiers modifiers;
    double expected;
  } keys[] = {{1, false, Qt::Key_Right, {}, 0.26},
              {1, false, Qt::Key_Left, {}, 0.25},
              {1, false, Qt::Key_Up, Qt::ShiftModifier, 0.251},
              {1, false, Qt::Key_Down, {}, 0.241},
              {1, false, Qt::Key_Left, Qt::ShiftModifier, 0.24},
              {2, false, Qt::Key_Home, {}, 0.001},
              {1, false, Qt::Key_End, {}, 0.999},  // short of the last one, nothing merges
              {1, true, Qt::Key_Right, {}, 0.51},
              {1, true, Qt::Key_End, {}, 1}};
  for (const auto& each : keys) {
    scene.select(each.sample, each.middle);
    VRTChannelGradientSample* sample = scene.selected();
    scene.key(each.key, each.modifiers);
    EXPECT_NEAR(each.middle ? sample->middle : sample->position, each.expected, 1e-12) << each.key;
    EXPECT_EQ(scene.selected(), sample);
    EXPECT_EQ(scene.takeLog(), "start change change end");
  }
  EXPECT_EQ(scene.count(), 4u);
  for (const int key : {Qt::Key_End, Qt::Key_Delete, Qt::Key_Return}) scene.key(key);
  scene.select(3);
  scene.key(Qt::Key_Right);
  EXPECT_EQ(scene.takeLog(), "") << "at the end already; a middle point is neither removed nor colored";
  EXPECT_EQ(VRTTransientColorPicker::current(), nullptr);
}

TEST_P(GradientGutter, KeysSelectNeighboursAndOnlyTheirOwnSamples) {
  scene.focus();
  VRTChannelGradient& channel = *scene.value->kxChannelGradient();
  VRTChannelGradientFolder& other =
      alpha() ? static_cast<VRTChannelGradientFolder&>(channel.rgbFolder) : channel.alphaFolder;
  auto* foreign = dynamic_cast<VRTChannelGradientSample*>(other.getDescendants()[1]);
  scene.editorPart().setSelectedSample(foreign, false, false);
  for (const int key : {Qt::Key_Delete, Qt::Key_Return, Qt::Key_Right}) scene.key(key);
  EXPECT_EQ(foreign->position, 0.25);
  EXPECT_EQ(scene.selected(), scene.sample(0)) << "the arrow took one of its own";
  scene.key(Qt::Key_PageDown);
  scene.key(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(scene.selected(), scene.sample(2));
  scene.key(Qt::Key_PageUp);
  EXPECT_EQ(scene.selected(), scene.sample(1));

  const auto accepts = [&](int key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(scene.gutter, &event);
    return event.isAccepted();
  };
  for (const int key : {Qt::Key_A, Qt::Key_Escape, Qt::Key_Space}) EXPECT_FALSE(accepts(key)) << key;
  scene.editorPart().setEnabled(false);
  EXPECT_EQ(scene.gutter->focusPolicy(), Qt::NoFocus);
  EXPECT_FALSE(accepts(Qt::Key_Right));
  EXPECT_EQ(scene.takeLog(), "");
  EXPECT_EQ(scene.positions(), (Positions{0, 0.25, 0.6, 1}));
}

TEST_P(GradientGutter, KeysInsertAndCopyInOneInteraction) {
  scene.focus();
  const struct {
    std::optional<std::size_t> sample;
    bool middle;
    int key;
    Positions expected;
  } cases[] = {{0, false, Qt::Key_Insert, {0, 0.125, 0.25, 0.6, 1}},
               {1, true, Qt::Key_Insert, {0, 0.25, 0.425, 0.6, 1}},
               {3, false, Qt::Key_Insert, {0, 0.25, 0.6, 0.8, 1}},
               {std::nullopt, false, Qt::Key_Insert, {0, 0.25, 0.6, 0.8, 1}},
               {1, false, Qt::Key_D, {0, 0.25, 0.3, 0.6, 1}},
               {3, false, Qt::Key_D, {0, 0.25, 0.6, 0.95, 1}},
               {1, true, Qt::Key_D, {0, 0.25, 0.6, 1}},
               {std::nullopt, false, Qt::Key_D, {0, 0.25, 0.6, 1}}};
  for (const auto& [sample, middle, key, expected] : cases) {
    scene.port->setValue(GradientScene::gradientAt({0, 0.25, 0.6, 1}));
    sample ? scene.select(*sample, middle) : scene.editorPart().setSelectedSample(nullptr, false, false);
    const std::unique_ptr<VRTChannelRef> source = sample ? scene.sample(*sample)->getRef() : nullptr;
    VortoColor looked, looks;
    dynamic_cast<VRTGradient&>(*scene.port->value()).kxChannelGradient()->getColor(0, 0.45, &looked);
    scene.takeLog();
    scene.key(key, key == Qt::Key_D ? Qt::ControlModifier : Qt::NoModifier);
    const Positions positions = scene.positions();
    ASSERT_EQ(positions.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(positions[i], expected[i], 1e-12);
    const bool changes = expected.size() > 4;
    EXPECT_EQ(scene.takeLog(), changes ? "start change end" : "");
    if (!changes) continue;
    ASSERT_TRUE(scene.selected());
    EXPECT_FALSE(scene.editorPart().getMiddleSelected());
    EXPECT_TRUE(!source || source->getChannel() != scene.selected()) << "what is new is selected";
    dynamic_cast<VRTGradient&>(*scene.port->value()).kxChannelGradient()->getColor(0, 0.45, &looks);
    EXPECT_NEAR(key == Qt::Key_Insert && !sample ? looks.c1 : looked.c1, looked.c1, 1e-6);
  }
  scene.port->setValue(GradientScene::gradientAt({0.5, 0.5001}));
  scene.editorPart().setSelectedSample(nullptr, false, false);
  scene.key(Qt::Key_Insert);
  EXPECT_EQ(scene.count(), 2u) << "there is no room";
}

TEST_P(GradientGutter, DeleteRemovesAllButTheLast) {
  scene.focus();
  for (const std::size_t left : {3, 2, 1, 1}) {
    const bool removes = scene.count() > left;
    scene.select(0);
    scene.key(left % 2 ? Qt::Key_Delete : Qt::Key_Backspace);
    EXPECT_EQ(scene.count(), left);
    EXPECT_EQ(scene.selected() == nullptr, removes);
    EXPECT_EQ(scene.takeLog(), removes ? "start change end" : "");
  }
}

TEST_P(GradientGutter, EnterPicksInOneInteraction) {
  scene.focus();
  scene.select(1);
  scene.key(Qt::Key_Return);
  EXPECT_EQ(scene.takeLog(), "start");
  QWidget* panel = VRTTransientColorPicker::panel();
  ASSERT_NE(panel, nullptr);
  for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Down}) QTest::keyClick(panel, key);
  EXPECT_NE(scene.takeLog().find("change"), std::string::npos);
  QTest::keyClick(panel, Qt::Key_Return);
  EXPECT_EQ(scene.takeLog(), "end");
  EXPECT_EQ(VRTTransientColorPicker::current(), nullptr);
}

TEST_P(GradientGutter, ShowsStopsAsSlidersWithTooltipsAndCursors) {
  readEnglishTexts();
  scene.select(1);
  const auto elements = scene.gutter->accessibilityElements();
  ASSERT_EQ(elements.size(), 7u) << "four stops, then three middle points";
  EXPECT_EQ(elements[1].description, named("#4d80b2", "85 %"));
  EXPECT_EQ(elements[5].name, "Middle point 2 of 3");
  EXPECT_EQ(elements[5].value, 0.5);
  EXPECT_EQ(elements[1].name, named("Color stop 2 of 4", "Opacity stop 2 of 4"));
  EXPECT_EQ(elements[1].value, 0.25);
  EXPECT_TRUE(elements[1].selected);
  EXPECT_FALSE(elements[2].selected);
  EXPECT_EQ(elements[3].frame.origin.x, scene.geometry().xOfPosition(1) - 5);
  QAccessibleInterface* view = QAccessible::queryAccessibleInterface(scene.gutter);
  ASSERT_TRUE(view && view->childCount() == 7 && view->child(2)->valueInterface());
  EXPECT_EQ(view->text(QAccessible::Name), named("Color stops", "Opacity stops"));
  view->child(2)->valueInterface()->setCurrentValue(0.75);
  EXPECT_EQ(scene.positions()[2], 0.75);
  EXPECT_EQ(scene.selected(), scene.sample(2));
  scene.gutter->setAccessibilityValue(5, 0.25);
  EXPECT_EQ(scene.sample(1)->middle, 0.25);
  for (const std::size_t none : {7, 99}) scene.gutter->setAccessibilityValue(none, 0.5);
  scene.gutter->setAccessibilityValue(1, 1);
  EXPECT_NEAR(scene.positions()[2], 0.999, 1e-12) << "short of the last one";
  EXPECT_EQ(scene.count(), 4u);

  scene.port->setValue(GradientScene::gradientAt({0, 0.25, 0.6, 1}));
  scene.folder().sortAndRename();
  scene.gutterPart().update();
  const double x = scene.xOf(0.6);
  const char* third = named("RGB3", "Alpha3");
  EXPECT_EQ(scene.gutter->toolTipAtPoint({x, 5}), third);
  EXPECT_EQ(scene.gutter->toolTipAtPoint({x + 20, 5}), "");
  EXPECT_TRUE(scene.gutter->toolTipAtPoint({x + 20, 20}).contains("Alt"));
  EXPECT_EQ(scene.gutter->cursorAtPoint({x, 5})->shape(), Qt::SizeHorCursor);
  EXPECT_EQ(scene.gutter->cursorAtPoint({x + 20, 20})->shape(), Qt::CrossCursor);
  EXPECT_FALSE(scene.gutter->cursorAtPoint({x + 20, 5}));
  scene.press({x, 5});
  scene.move({x + 30, 5});
  EXPECT_EQ(scene.gutter->toolTipAtPoint({x, 5}), third) << "kept until the drag ends";
  scene.release();
  EXPECT_EQ(scene.gutter->toolTipAtPoint({x + 30, 5}), third);
  EXPECT_EQ(scene.gutter->toolTipAtPoint({x, 5}), "");
}

// What a screen reader hears while a stop is chosen, moved and colored by keyboard.
TEST_P(GradientGutter, AnnouncesWhatKeysDo) {
  readEnglishTexts();
  std::string heard;
  NSListenToAccessibility([&](QAccessibleEvent& event) {
    const QAccessibleInterface* part = event.accessibleInterface();
    if (!part || event.object() != scene.gutter || part->role() != QAccessible::Slider) return;
    const bool isFocus = event.type() == QAccessible::Focus;
    heard += isFocus ? "focus " : event.type() == QAccessible::ValueChanged ? "value " : "description ";
    heard += part->text(QAccessible::Name).section(' ', -3, -3).toStdString() + " ";
    EXPECT_TRUE(!isFocus || part->state().focused);
  });
  const auto hears = [&](const char* expected) {
    QCoreApplication::processEvents();
    EXPECT_EQ(std::exchange(heard, {}), expected);
  };
  scene.focus();
  hears("");
  scene.select(0);
  hears("focus 1 ");
  scene.key(Qt::Key_PageDown);
  hears("focus 2 ");
  scene.key(Qt::Key_PageDown, Qt::ShiftModifier);
  hears("focus 2 ");  // the middle point
  EXPECT_TRUE(scene.editorPart().getMiddleSelected());
  scene.key(Qt::Key_Left);
  hears("value 2 ");
  scene.key(Qt::Key_PageUp, Qt::ShiftModifier);
  hears("focus 2 ");
  scene.key(Qt::Key_Right);
  hears("value 2 ");
  scene.key(Qt::Key_Return);
  QTest::keyClick(VRTTransientColorPicker::panel(), Qt::Key_Left, Qt::ShiftModifier);
  EXPECT_TRUE(heard.starts_with("description 2 ")) << heard;
  VRTTransientColorPicker::current()->cancel();
  QCoreApplication::processEvents();
  heard.clear();

  QAccessibleInterface* view = QAccessible::queryAccessibleInterface(scene.gutter);
  scene.gutter->clearFocus();
  view->child(3)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
  hears("focus 4 focus 4 ");
  EXPECT_EQ(view->focusChild(), view->child(3));
  EXPECT_TRUE(view->child(0)->state().focusable);
  EXPECT_EQ(scene.selected(), scene.sample(3));
  view->child(2)->actionInterface()->doAction(QAccessibleActionInterface::decreaseAction());
  EXPECT_NEAR(scene.sample(2)->position, 0.59, 1e-12);
  NSListenToAccessibility(nullptr);
}

// What dies or changes meanwhile.

// With the old value kept elsewhere, and without.
TEST_P(GradientGutter, AReplacedGradientIsLeftAlone) {
  for (const bool kept : {false, true}) {
    for (const double y : {5.0, 60.0}) {
      GradientScene drag(alpha());
      if (!kept) drag.value.reset();
      drag.press({drag.xOf(0.25), 5});
      drag.move({drag.xOf(0.3), y});
      drag.port->setValue(GradientScene::gradientAt({0.1, 0.5, 0.5}));
      EXPECT_EQ(drag.selected(), nullptr);
      for (const double next : {60.0, 5.0, 60.0}) drag.move({drag.xOf(0.4), next});
      drag.release();
      EXPECT_EQ(drag.positions(), (Positions{0.1, 0.5, 0.5}));
      if (!kept) continue;
      drag.port->setValue(drag.value);
      EXPECT_EQ(drag.count(), y > 5 ? 3u : 4u);
    }
  }
}

// Every gesture goes on in the copies; the selection survives them, and undo.
TEST_P(GradientGutter, AHostMayStoreACopyOnEveryChange) {
  const PropertyList before = *scene.port->stateValue();
  const auto store = [&] { scene.port->setStateValue(PropertyList(*scene.port->stateValue()), nullptr); };
  scene.onNote = [&, storing = false](const std::string& what) mutable {
    if (what != "change" || std::exchange(storing, true)) return;
    store();
    storing = false;
  };
  const double step = std::round(scene.span() / 20), start = scene.xOf(0.25);
  scene.press(band(0.25));
  for (const NSPoint point : {NSPoint{start + step, kBand}, {start + step, 60}, {start + 9 * step, kBand}}) {
    scene.move(point);
  }
  scene.release();
  EXPECT_EQ(scene.selected(), scene.sample(2)) << "dragged off and back and past the third";
  EXPECT_DOUBLE_EQ(scene.sample(2)->position, dragged(0.25, 9 * step));
  scene.focus();
  for (int i = 0; i < 3; ++i) scene.keyDown(Qt::Key_Left);
  scene.keyUp(Qt::Key_Left);
  EXPECT_NEAR(scene.sample(2)->position, dragged(0.25, 9 * step) - 0.03, 1e-12);
  scene.press({scene.middleX(2), kBand});
  for (const int way : {5, 9}) scene.move({scene.middleX(2) + way, kBand});
  scene.release();
  EXPECT_GT(scene.sample(2)->middle, 0.5);
  EXPECT_TRUE(scene.editorPart().getMiddleSelected());

  scene.clickSample(2);
  scene.onNote = nullptr;
  for (const PropertyList& state : {before, *scene.port->stateValue(), before}) {
    scene.port->setStateValue(state, nullptr);
    EXPECT_EQ(scene.selected(), scene.sample(state == before ? 1 : 2)) << "undone, redone";
  }
  scene.click(band(0.25), {}, Qt::RightButton);
  std::vector<PropertyList> states;
  for (const int x : {20, 60, 90}) {
    GradientScene::hoverPicker({x, 20});
    store();
    states.push_back(*scene.port->stateValue());
  }
  EXPECT_NE(states[1], states[0]);
  EXPECT_NE(states[2], states[1]);
  VRTTransientColorPicker::current()->cancel();
  EXPECT_EQ(*scene.port->stateValue(), before);
  scene.port->setStateValue(states[0], nullptr);
  EXPECT_EQ(scene.selected(), scene.sample(1)) << "of another color";
}

TEST_P(GradientGutter, ADraggedSampleDiesWithTheEditorOrTheValue) {
  const auto dragOff = [&](double position) {
    std::unique_ptr<VRTChannelRef> ref = scene.sample(1)->getRef();
    scene.press(band(position));
    scene.move({scene.xOf(0.3), 60});
    EXPECT_NE(ref->getChannel(), nullptr);
    return ref;
  };
  const auto first = dragOff(0.25);
  const QPointer<NSTarnView> gutter = scene.gutter;
  scene.port->setValue(nullptr);
  QCoreApplication::processEvents();
  EXPECT_EQ(first->getChannel(), nullptr);
  EXPECT_EQ(gutter->parentWidget(), nullptr) << "taken out of the panel";
  gutter->mouseUp(NSEvent());
  EXPECT_EQ(scene.EditorScene::count("end"), 1) << scene.log;
  scene.port->setValue(scene.value);
  EXPECT_EQ(scene.positions(), (Positions{0, 0.6, 1}));

  const auto second = dragOff(0.6);
  delete scene.editor;
  EXPECT_EQ(second->getChannel(), nullptr);
}

TEST_P(GradientGutter, ObserversMayDeleteTheDraggedSample) {
  scene.press(band(0.25));
  scene.onNote = [&](const std::string& what) {
    VRTChannelGradientSample* sample = scene.editor ? scene.selected() : nullptr;
    if (what != "change" || !sample) return;
    scene.folder().removeDescendant(sample);
    delete sample;
  };
  for (const NSPoint point : {band(0.3), band(0.4), NSPoint{scene.xOf(0.4), 60}, band(0.4)}) {
    scene.move(point);
    EXPECT_EQ(scene.selected(), nullptr);
  }
  scene.release();
  EXPECT_EQ(scene.positions(), (Positions{0, 0.6, 1}));
  scene.window->grab();
}

TEST_P(GradientGutter, TheDelegateMayDestroyTheEditor) {
  struct Delegate : VRTGradientEditorDelegate {
    void setSelectedSample(VRTChannelGradientSample*, bool, bool) override { delete editor; }
    QPointer<NSTarnView> editor;
  } delegate;
  for (const auto& [button, y] : {std::pair{Qt::LeftButton, kStrip}, {Qt::RightButton, kBand}}) {
    GradientScene pressed(alpha());
    delegate.editor = pressed.editor;
    pressed.editorPart().setDelegate(&delegate);
    pressed.click({pressed.xOf(0.6), y}, {}, button);
    EXPECT_TRUE(pressed.editor.isNull());
    EXPECT_EQ(pressed.takeLog(), "");
  }
}

TEST_P(GradientGutter, TheDelegateMayRunADialogWhichSeesTheRelease) {
  struct Delegate : VRTGradientEditorDelegate {
    void setSelectedSample(VRTChannelGradientSample*, bool, bool doubleClick) override {
      if (doubleClick) scene.release();
    }
    explicit Delegate(GradientScene& shown) : scene(shown) {}
    GradientScene& scene;
  } delegate(scene);
  scene.editorPart().setDelegate(&delegate);
  scene.doubleClick(band(0.25));
  EXPECT_EQ(scene.takeLog(), "start change end start change end");
  scene.press(band(0.25));
  scene.editorPart().setEnabled(false);
  scene.release();
  EXPECT_EQ(scene.takeLog(), "start change end") << "disabled in mid-drag";
}

TEST_P(GradientGutter, PickersSurviveTheirEditorAndTheirSample) {
  const auto hover = [] { GradientScene::hoverPicker({30, 30}); };
  scene.click(band(0.25), {}, Qt::RightButton);
  ASSERT_NE(VRTTransientColorPicker::current(), nullptr);
  hover();
  scene.port->setValue(GradientScene::gradientAt({0.2, 0.8}));
  scene.select(0);
  scene.takeLog();
  hover();
  VRTTransientColorPicker::current()->cancel();
  EXPECT_EQ(scene.takeLog(), "") << "another sample is selected now";

  scene.gutter->setFocus();
  QTest::keyClick(scene.gutter, Qt::Key_Return);
  ASSERT_NE(VRTTransientColorPicker::current(), nullptr);
  const QPointer<QWidget> panel = VRTTransientColorPicker::panel();
  QTest::keyClick(panel, Qt::Key_Down);
  delete scene.editor;
  if (panel) QTest::keyClick(panel, Qt::Key_Down);
  EXPECT_EQ(VRTTransientColorPicker::current(), nullptr);
  QCoreApplication::processEvents();
  EXPECT_EQ(scene.takeLog(), "start change end");
}

TEST_P(GradientGutter, MayBeRemovedFromItsEditorAndOutliveAPort) {
  auto port = std::make_shared<VRTGradientPort>("inputGradient");
  port->setValue(GradientScene::gradientAt({0, 1}));
  scene.gutterPart().setGradientPort(port.get());
  scene.press(band(1));
  port.reset();
  scene.move(band(0.5));
  scene.release();
  scene.gutterPart().update();
  scene.window->grab();
  EXPECT_EQ(scene.gutterPart().getFolder(), nullptr);

  delete scene.gutter;
  scene.editorPart().update();
  scene.editorPart().setEnabled(false);
  scene.port->setValue(nullptr);
  scene.port->setValue(scene.value);
  scene.attach(nullptr);
  scene.window->grab();
}
