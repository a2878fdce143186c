// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/GradientEditor/Panel.h"

// Every way to use the mouse in a gutter: what becomes of the model and the selection, and what the port is told, in
// order. In both gutters (the opacity gutter is flipped), in a small and in a wide panel.

namespace {

struct Place {
  const char* name;
  bool alpha;
  int width;
};

constexpr double kBand = 5;    // a row of the marker band
constexpr double kStrip = 20;  // a row of the strip

}  // namespace

class GutterMouse : public testing::TestWithParam<Place> {
 protected:
  ~GutterMouse() override {
    if (auto* picker = VRTTransientColorPicker::current()) picker->cancel();
  }
  // Where a sample comes to stand that is dragged by whole points.
  double dragged(double from, double points) const { return from + points / panel.span(); }
  VRTChannelGradientSample* selected() const { return panel.editor->getSelectedSample(); }
  double middleX(std::size_t index) const {
    const auto* left = panel.sample(index);
    return panel.xOf(
        VRTGradientGutterGeometry::positionOfMiddle(left->position, panel.sample(index + 1)->position, left->middle));
  }

  Panel panel{GetParam().width, GetParam().alpha};
};

INSTANTIATE_TEST_SUITE_P(, GutterMouse,
                         testing::Values(Place{"Color", false, 236}, Place{"ColorWide", false, 733},
                                         Place{"Opacity", true, 236}, Place{"OpacityWide", true, 733}),
                         [](const auto& each) { return each.param.name; });

TEST_P(GutterMouse, ClickOnTheStripInsertsASampleThatKeepsTheLookAndDragsIt) {
  const double x = panel.xOf(0.45);
  const double position = (x - 5) / panel.span();
  VortoColor before;
  panel.value->kxChannelGradient()->getColor(0, position, &before);

  panel.press({x, kStrip});
  ASSERT_EQ(panel.folder().getNumberOfDescendants(), 5u);
  VRTChannelGradientSample* inserted = panel.sample(4);
  EXPECT_EQ(selected(), inserted);
  EXPECT_FALSE(panel.editor->getMiddleSelected());
  EXPECT_DOUBLE_EQ(inserted->position, position);
  EXPECT_EQ(inserted->getID(), 0);
  VortoColor after;
  panel.value->kxChannelGradient()->getColor(0, position, &after);
  EXPECT_NEAR(before.c1, after.c1, 1e-6);
  EXPECT_NEAR(before.alpha, after.alpha, 1e-6);
  EXPECT_EQ(panel.takeLog(), "start");

  panel.move({x + 40, kStrip});
  EXPECT_DOUBLE_EQ(inserted->position, dragged(position, 40));
  EXPECT_EQ(panel.takeLog(), "change");
  panel.release();
  EXPECT_EQ(panel.takeLog(), "change end");
  EXPECT_EQ(selected(), inserted);
  const std::vector<double> positions = panel.positions();
  EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end()));
  char* name = panel.sample(4)->getName().createUTF8Str();
  EXPECT_STREQ(name, GetParam().alpha ? "Alpha5" : "RGB5");
  std::free(name);
}

TEST_P(GutterMouse, ClicksBesideTheTrackInsertBeyondItsEnds) {
  panel.press({2, kStrip});
  EXPECT_DOUBLE_EQ(panel.sample(4)->position, -3 / panel.span());
  panel.release();
}

TEST_P(GutterMouse, ClickInTheEmptyBandClearsTheSelection) {
  panel.clickSample(1);
  EXPECT_NE(selected(), nullptr);
  panel.takeLog();
  const double x = panel.xOf(0.8);
  panel.press({x, kBand});
  EXPECT_EQ(selected(), nullptr);
  EXPECT_EQ(panel.takeLog(), "start");
  panel.move({x + 30, kBand});
  EXPECT_EQ(panel.takeLog(), "") << "nothing is dragged";
  panel.release();
  EXPECT_EQ(panel.takeLog(), "change end");
  EXPECT_EQ(panel.positions(), (std::vector<double>{0, 0.25, 0.6, 1}));
}

TEST_P(GutterMouse, DragMovesASampleAndStopsAtTheEnds) {
  VRTChannelGradientSample* second = panel.sample(1);
  const double x = panel.xOf(0.25);
  panel.press({x, kBand});
  EXPECT_EQ(selected(), second);
  EXPECT_EQ(panel.takeLog(), "start");
  panel.move({x - 20, kBand});
  EXPECT_DOUBLE_EQ(second->position, dragged(0.25, -20));
  panel.move({panel.xOf(1) + 300, kBand});
  EXPECT_EQ(second->position, 1);
  panel.move({-200, kBand});
  EXPECT_EQ(second->position, 0);
  panel.move({panel.xOf(0.25) + std::round(panel.span() / 2), kBand});  // past its neighbour
  EXPECT_EQ(panel.takeLog(), "change change change change");
  panel.release();
  EXPECT_EQ(panel.takeLog(), "change end");
  EXPECT_EQ(selected(), second);
  EXPECT_EQ(panel.sample(2), second) << "sorted behind the sample that it passed";
}

TEST_P(GutterMouse, ASampleLeftOnAnotherReplacesOrYieldsToIt) {
  panel.press({panel.xOf(0), kBand});
  panel.move({panel.xOf(1) + 50, kBand});
  panel.release();
  EXPECT_EQ(panel.positions(), (std::vector<double>{0.25, 0.6, 1}));
  EXPECT_EQ(selected(), nullptr) << "the later child of the folder stays";
}

TEST_P(GutterMouse, OptionDragCopiesTheSampleThatWasClicked) {
  VRTChannelGradientSample* third = panel.sample(2);
  const double x = panel.xOf(0.6);
  panel.press({x, kBand}, Qt::AltModifier);
  ASSERT_EQ(panel.folder().getNumberOfDescendants(), 5u);
  VRTChannelGradientSample* copy = panel.sample(4);
  EXPECT_EQ(selected(), copy);
  EXPECT_EQ(copy->position, 0.6);
  EXPECT_EQ(copy->getID(), 0);
  EXPECT_NE(third->getID(), 0);
  if (auto* color = dynamic_cast<VRTChannelGradientSampleRGB*>(copy)) {
    EXPECT_EQ(color->red, dynamic_cast<VRTChannelGradientSampleRGB*>(third)->red);
  }
  panel.move({x + 25, kBand});
  panel.release(Qt::AltModifier);
  EXPECT_EQ(third->position, 0.6);
  EXPECT_DOUBLE_EQ(copy->position, dragged(0.6, 25));
  EXPECT_EQ(panel.takeLog(), "start change change end");

  panel.press({x, kBand}, Qt::AltModifier);  // and let go on the spot: the copy takes the source's place
  panel.release(Qt::AltModifier);
  EXPECT_EQ(panel.folder().getNumberOfDescendants(), 5u);
}

TEST_P(GutterMouse, MiddlePointsAreDraggedWithinTheirSegment) {
  panel.clickSample(2);
  panel.takeLog();
  VRTChannelGradientSample* left = panel.sample(1);
  const double x = middleX(1);
  panel.press({x, kBand});
  EXPECT_EQ(selected(), left);
  EXPECT_TRUE(panel.editor->getMiddleSelected());
  EXPECT_EQ(panel.takeLog(), "start");
  panel.move({x + 12, kBand});
  EXPECT_DOUBLE_EQ(left->middle, 12 / panel.span() / (0.6 - 0.25) + 0.5);
  panel.move({x + 500, 60});
  EXPECT_EQ(left->middle, 1);
  panel.move({x - 500, -60});
  EXPECT_EQ(left->middle, 0) << "middle points are not dragged off";
  EXPECT_EQ(panel.takeLog(), "change change change");
  panel.release();
  EXPECT_EQ(panel.takeLog(), "change end");
  EXPECT_EQ(panel.positions(), (std::vector<double>{0, 0.25, 0.6, 1}));
}

TEST_P(GutterMouse, MiddlePointsAwayFromTheSelectionAreNotHit) {
  panel.clickSample(3);
  const double x = middleX(0);
  panel.press({x, kBand});
  EXPECT_EQ(selected(), nullptr);
  panel.release();
}

TEST_P(GutterMouse, ASampleDraggedOffIsDestroyedOnRelease) {
  VRTChannelGradientSample* second = panel.sample(1);
  const std::unique_ptr<VRTChannelRef> ref = second->getRef();
  const double x = panel.xOf(0.25);
  panel.press({x, kBand});
  panel.move({x, kBand + (panel.wholePoints() ? 12 : 11)});
  EXPECT_EQ(panel.folder().getNumberOfDescendants(), 4u);
  panel.move({x, kBand + (panel.wholePoints() ? 13 : 14)});
  EXPECT_EQ(panel.positions(), (std::vector<double>{0, 0.6, 1}));
  EXPECT_EQ(selected(), nullptr);
  EXPECT_TRUE(panel.gutter->deleteUndoHandled());
  panel.move({x + 5, kBand + 30});
  EXPECT_EQ(ref->getChannel(), second) << "pending";
  EXPECT_EQ(panel.takeLog(), "start change change change");
  panel.release();
  EXPECT_EQ(ref->getChannel(), nullptr);
  EXPECT_EQ(panel.takeLog(), "change end");
  EXPECT_EQ(panel.folder().getNumberOfDescendants(), 3u);
}

TEST_P(GutterMouse, ASampleDraggedBackIsRestoredAtTheEndAndSelected) {
  VRTChannelGradientSample* second = panel.sample(1);
  const double x = panel.xOf(0.25);
  panel.press({x, kBand});
  panel.move({x, kBand - (panel.wholePoints() ? 13 : 12)});
  EXPECT_EQ(panel.folder().getNumberOfDescendants(), 4u) << "13 below still is on the gutter";
  panel.move({x, kBand - (panel.wholePoints() ? 14 : 15)});
  EXPECT_EQ(panel.folder().getNumberOfDescendants(), 3u);
  panel.move({x + 8, kBand});
  ASSERT_EQ(panel.folder().getNumberOfDescendants(), 4u);
  EXPECT_EQ(panel.sample(3), second);
  EXPECT_EQ(selected(), second);
  EXPECT_DOUBLE_EQ(second->position, dragged(0.25, 8));
  panel.release();
  EXPECT_EQ(panel.sample(1), second);
  EXPECT_EQ(panel.takeLog(), "start change change change change end");
}

TEST_P(GutterMouse, TheLastSampleStays) {
  while (panel.folder().getNumberOfDescendants() > 1) {
    VRTChannelBase* last = panel.folder().getDescendants().back();
    panel.folder().removeDescendant(last);
    delete last;
  }
  VRTChannelGradientSample* only = panel.sample(0);
  panel.press({panel.xOf(0), kBand});
  panel.move({panel.xOf(0) + 30, 200});
  EXPECT_EQ(panel.sample(0), only);
  EXPECT_DOUBLE_EQ(only->position, dragged(0, 30)) << "it just moves on";
  panel.release();
  EXPECT_EQ(panel.folder().getNumberOfDescendants(), 1u);
}

TEST_P(GutterMouse, RightClickOnASampleOpensItsPicker) {
  const double x = panel.xOf(0.6);
  panel.press({x, kBand}, {}, Qt::RightButton);
  EXPECT_EQ(selected(), panel.sample(2));
  EXPECT_NE(VRTTransientColorPicker::current(), nullptr);
  EXPECT_EQ(panel.takeLog(), "");
  VRTTransientColorPicker::current()->cancel();
  const double middle = middleX(2);
  panel.release({}, Qt::RightButton);
  panel.press({middle, kBand}, {}, Qt::RightButton);
  EXPECT_EQ(VRTTransientColorPicker::current(), nullptr) << "a middle point has no color";
  EXPECT_EQ(selected(), panel.sample(2));
  panel.release({}, Qt::RightButton);
  EXPECT_EQ(panel.takeLog(), "");
}

TEST_P(GutterMouse, ControlClickIsARightClickThatMayEndWithoutAStart) {
  const double x = panel.xOf(0.6);
  panel.press({x, kBand}, Qt::ControlModifier);
  EXPECT_EQ(selected(), panel.sample(2));
  EXPECT_NE(VRTTransientColorPicker::current(), nullptr);
  EXPECT_EQ(panel.takeLog(), "");
  panel.release(Qt::ControlModifier);
  EXPECT_EQ(panel.takeLog(), "change end");
}

TEST_P(GutterMouse, DoubleClickOpensThePickerUnlessTheDelegateDoes) {
  panel.doubleClick({panel.xOf(0.6), kBand});
  EXPECT_NE(VRTTransientColorPicker::current(), nullptr);
  VRTTransientColorPicker::current()->cancel();
  EXPECT_EQ(panel.takeLog(), "start change end start change end");

  struct Delegate : VRTGradientEditorDelegate {
    void setSelectedSample(VRTChannelGradientSample* sample, bool middle, bool doubleClick) override {
      told.emplace_back(sample, middle + 2 * doubleClick);
    }
    std::vector<std::pair<VRTChannelGradientSample*, int>> told;
  } delegate;
  panel.editor->setDelegate(&delegate);
  panel.doubleClick({panel.xOf(0.25), kBand});
  EXPECT_EQ(VRTTransientColorPicker::current(), nullptr);
  panel.doubleClick({middleX(1), kBand});
  const auto second = panel.sample(1);
  EXPECT_EQ(delegate.told, (std::vector<std::pair<VRTChannelGradientSample*, int>>{
                               {second, 0}, {second, 2}, {second, 1}, {second, 3}}));
}

TEST_P(GutterMouse, WhoeverNeedsKeyframesLearnsOfMoves) {
  const auto drag = [&] {
    panel.press({panel.xOf(0.25), kBand});
    panel.move({panel.xOf(0.25) + 1, kBand});
    panel.release();
  };
  drag();
  EXPECT_FALSE(panel.gutter->keyframed());
  panel.gutter->setNeedsToBeKeyframed(true);
  drag();
  EXPECT_TRUE(panel.gutter->keyframed());
}

namespace {

class Superview : public NSTarnView {
 public:
  using NSTarnView::NSTarnView;
  void mouseDown(const NSEvent&) override { got += "down "; }
  void mouseDragged(const NSEvent&) override { got += "dragged "; }
  void mouseUp(const NSEvent&) override { got += "up "; }
  void rightMouseDown(const NSEvent&) override { got += "right "; }
  std::string got;
};

}  // namespace

TEST_P(GutterMouse, DisabledOrWithoutAGradientTheSuperviewGetsTheEvents) {
  Superview superview(NSMakeRect(0, 0, 300, 100));
  auto* gutter = dynamic_cast<VRTGradientGutter*>(
      GetParam().alpha ? static_cast<QWidget*>(new VRTGradientGutterAlpha(NSMakeRect(0, 0, 200, 26)))
                       : new VRTGradientGutterRGB(NSMakeRect(0, 0, 200, 26)));
  superview.addSubview(*gutter);
  superview.show();
  gutter->setGradientPort(panel.port.get());
  const auto use = [&] {
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
      QTest::mousePress(gutter, button, {}, QPoint(50, 20));
      QMouseEvent drag(QEvent::MouseMove, QPointF(60, 20), gutter->mapToGlobal(QPointF(60, 20)), Qt::NoButton, button,
                       {});
      QApplication::sendEvent(gutter, &drag);
      QTest::mouseRelease(gutter, button, {}, QPoint(60, 20));
    }
    return std::exchange(superview.got, {});
  };
  EXPECT_EQ(use(), "down dragged up down ") << "not enabled; a right click arrives as mouseDown";
  EXPECT_EQ(panel.takeLog(), "");
  gutter->setEnabled(true);
  panel.port->setValue(nullptr);
  panel.takeLog();
  EXPECT_EQ(use(), "down dragged down ") << "the release stays with an enabled gutter";
  EXPECT_EQ(panel.takeLog(), "change end");
}

// Picks from the open picker by keyboard and mouse.
TEST_P(GutterMouse, PickedColorsGoToTheSelectedSample) {
  panel.press({panel.xOf(0.6), kBand}, {}, Qt::RightButton);
  ASSERT_NE(VRTTransientColorPicker::panel(), nullptr);
  QWidget& swatch = *VRTTransientColorPicker::panel();
  QTest::mouseClick(&swatch, Qt::LeftButton, {}, QPoint(swatch.width() / 3, swatch.height() / 2));
  EXPECT_EQ(VRTTransientColorPicker::current(), nullptr);
  panel.release({}, Qt::RightButton);
  EXPECT_NE(panel.takeLog(), "");
  const auto* third = panel.sample(2);
  if (const auto* color = dynamic_cast<const VRTChannelGradientSampleRGB*>(third)) {
    EXPECT_FALSE(color->red == 0.5 && color->green == 0.5 && color->blue == 0.5);
    volatile float red = static_cast<float>(color->red);
    EXPECT_EQ(color->red, red);
  } else {
    EXPECT_NE(dynamic_cast<const VRTChannelGradientSampleAlpha*>(third)->alpha, 0.75);
  }
}
