// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/GradientEditor/Panel.h"

// Ports, values, samples, editors and delegates that die or change at any moment. What matters is mostly that nothing
// dead is touched, which the sanitizer build sees.

namespace {

void expectOneInteraction(const std::string& log) {
  const auto count = [&](const std::string& word) {
    std::size_t found = 0;
    for (std::size_t at = log.find(word); at != std::string::npos; at = log.find(word, at + 1)) ++found;
    return found;
  };
  EXPECT_EQ(count("start"), 1u) << log;
  EXPECT_EQ(count("end"), 1u) << log;
}

}  // namespace

class Lifetimes : public testing::TestWithParam<bool> {
 protected:
  Panel panel{236, GetParam()};
};

INSTANTIATE_TEST_SUITE_P(, Lifetimes, testing::Bool(),
                         [](const auto& each) { return each.param ? "Opacity" : "Color"; });

TEST_P(Lifetimes, TheEditorKeepsItsPort) {
  const std::weak_ptr<VRTGradientPort> port = panel.port;
  panel.observations.clear();
  panel.port->removeObserver(&panel, "value");
  panel.port.reset();
  panel.value.reset();
  EXPECT_FALSE(port.expired());
  panel.clickSample(1);
  panel.window->grab();
  delete panel.editor;
  EXPECT_TRUE(port.expired());
}

TEST_P(Lifetimes, AViewMayOutliveItsPort) {
  auto port = std::make_shared<VRTGradientPort>("inputGradient");
  port->setValue(Panel::gradientAt({0, 1}));
  panel.gutter->setGradientPort(port.get());
  panel.press({panel.xOf(1), 5});
  port.reset();
  panel.move({panel.xOf(0.5), 5});
  panel.release();
  panel.gutter->update();
  panel.window->grab();
  EXPECT_EQ(panel.gutter->getFolder(), nullptr);
}

TEST_P(Lifetimes, TheEditorDiesInsideEveryNotificationOfADrag) {
  for (int which = 0; which < 6; ++which) {
    Panel doomed(236, GetParam());
    int told = 0;
    doomed.onNote = [&](const std::string&) {
      if (told++ == which) delete doomed.editor;
    };
    doomed.press({doomed.xOf(0.25), 5});
    const auto then = [&](auto step) {
      if (doomed.gutter) step();
    };
    then([&] { doomed.move({doomed.xOf(0.3), 5}); });
    then([&] { doomed.move({doomed.xOf(0.3), 60}); });
    then([&] { doomed.move({doomed.xOf(0.3), 5}); });
    doomed.release();
    EXPECT_EQ(doomed.editor.isNull(), told > which) << which;
    expectOneInteraction(doomed.log);
    QCoreApplication::processEvents();
  }
}

TEST_P(Lifetimes, TheEditorDiesWithASampleDraggedOff) {
  const std::unique_ptr<VRTChannelRef> ref = panel.sample(1)->getRef();
  panel.press({panel.xOf(0.25), 5});
  panel.move({panel.xOf(0.25), 60});
  EXPECT_NE(ref->getChannel(), nullptr);
  delete panel.editor;
  EXPECT_EQ(ref->getChannel(), nullptr);
  panel.release();
  expectOneInteraction(panel.log);
}

TEST_P(Lifetimes, TheDelegateDestroysTheEditor) {
  struct Delegate : VRTGradientEditorDelegate {
    void setSelectedSample(VRTChannelGradientSample*, bool, bool) override { delete editor; }
    QPointer<VRTGradientEditor> editor;
  } delegate;
  delegate.editor = panel.editor;
  panel.editor->setDelegate(&delegate);
  panel.press({panel.xOf(0.8), 20});  // inserts
  panel.release();
  EXPECT_TRUE(panel.editor.isNull());
  EXPECT_EQ(panel.takeLog(), "");
}

// With the old value kept elsewhere, and without.
TEST_P(Lifetimes, TheValueIsReplacedInADrag) {
  for (const bool kept : {false, true}) {
    for (const bool off : {false, true}) {
      Panel drag(236, GetParam());
      if (!kept) drag.value.reset();
      drag.press({drag.xOf(0.25), 5});
      drag.move({drag.xOf(0.3), off ? 60.0 : 5.0});
      drag.port->setValue(Panel::gradientAt({0.1, 0.5, 0.5}));
      EXPECT_EQ(drag.editor->getSelectedSample(), nullptr);
      for (const double y : {60.0, 5.0, 60.0}) drag.move({drag.xOf(0.4), y});
      drag.release();
      EXPECT_EQ(drag.positions(), (std::vector<double>{0.1, 0.5, 0.5})) << "the new value is left alone";
      if (kept) {
        EXPECT_EQ(drag.value->kxChannelGradient()->rgbFolder.getNumberOfDescendants(), off && !GetParam() ? 3u : 4u);
      }
      expectOneInteraction(drag.log);
    }
  }
}

TEST_P(Lifetimes, TheValueIsTakenAwayInADrag) {
  panel.press({panel.xOf(0.25), 5});
  panel.move({panel.xOf(0.3), 60});
  QPointer<VRTGradientGutter> gutter = panel.gutter;
  panel.port->setValue(nullptr);
  EXPECT_EQ(panel.part("gradientGutterRGB"), nullptr);
  QTest::mouseRelease(panel.window->windowHandle(), Qt::LeftButton, {}, QPoint(5, 5));
  expectOneInteraction(panel.log);
  gutter->mouseUp(NSEvent());
  expectOneInteraction(panel.log);
  panel.port->setValue(panel.value);
  EXPECT_EQ(panel.gutter, gutter);
  EXPECT_EQ(panel.positions(), (std::vector<double>{0, 0.6, 1}));
}

TEST_P(Lifetimes, AnotherObserverDeletesTheDraggedSample) {
  panel.press({panel.xOf(0.25), 5});
  panel.onNote = [&](const std::string& what) {
    VRTChannelGradientSample* sample = panel.editor ? panel.editor->getSelectedSample() : nullptr;
    if (what != "change" || !sample) return;
    panel.folder().removeDescendant(sample);
    delete sample;
  };
  panel.move({panel.xOf(0.3), 5});
  EXPECT_EQ(panel.editor->getSelectedSample(), nullptr);
  panel.move({panel.xOf(0.4), 5});
  panel.move({panel.xOf(0.4), 60});
  panel.move({panel.xOf(0.4), 5});
  panel.release();
  EXPECT_EQ(panel.positions(), (std::vector<double>{0, 0.6, 1}));
  expectOneInteraction(panel.log);
  panel.window->grab();
}

TEST_P(Lifetimes, SelectedSamplesThatLeaveTheGradientAreForgotten) {
  panel.clickSample(1);
  VRTChannelGradientSample* sample = panel.sample(1);
  {
    const VRTPortChange change(panel.port);
    panel.folder().removeDescendant(sample);
  }
  EXPECT_EQ(panel.editor->getSelectedSample(), nullptr);
  delete sample;
  panel.clickSample(2);
  panel.folder().deleteSample(0);  // the first one
  panel.window->grab();
  EXPECT_NE(panel.editor->getSelectedSample(), nullptr);
}

TEST_P(Lifetimes, AnEndThatGetsLostIsMadeUpFor) {
  panel.press({panel.xOf(0.25), 5});
  panel.move({panel.xOf(0.25), 60});
  panel.takeLog();
  const NSPoint press{panel.xOf(0.6), 5};
  panel.gutter->mouseDown(NSEvent(panel.gutter->convertPointToWindow(press), 0, 1, QPoint()));
  EXPECT_EQ(panel.takeLog(), "change end start");
  panel.release();
  EXPECT_EQ(panel.positions(), (std::vector<double>{0, 0.6, 1}));
}

TEST_P(Lifetimes, PickersSurviveTheirEditorAndTheirSample) {
  const auto hover = [] {
    QWidget* swatch = VRTTransientColorPicker::panel();
    if (!swatch) return;
    QMouseEvent move(QEvent::MouseMove, QPointF(30, 30), swatch->mapToGlobal(QPointF(30, 30)), Qt::NoButton,
                     Qt::NoButton, {});
    QApplication::sendEvent(swatch, &move);
  };
  panel.press({panel.xOf(0.25), 5}, {}, Qt::RightButton);
  ASSERT_NE(VRTTransientColorPicker::current(), nullptr);
  panel.release({}, Qt::RightButton);
  hover();
  panel.takeLog();
  panel.port->setValue(Panel::gradientAt({0.2, 0.8}));
  panel.editor->setSelectedSample(panel.sample(0), false, false);
  panel.takeLog();
  hover();
  VRTTransientColorPicker::current()->cancel();
  EXPECT_EQ(panel.takeLog(), "") << "another sample is selected now";

  panel.gutter->setFocus();
  QTest::keyClick(panel.gutter, Qt::Key_Return);
  ASSERT_NE(VRTTransientColorPicker::current(), nullptr);
  hover();
  delete panel.editor;
  hover();
  EXPECT_EQ(VRTTransientColorPicker::current(), nullptr);
  expectOneInteraction(panel.log);
}

TEST_P(Lifetimes, AGutterMayBeRemovedFromItsEditor) {
  delete panel.gutter;
  panel.editor->update();
  panel.editor->setEnabled(false);
  panel.port->setValue(nullptr);
  panel.port->setValue(panel.value);
  panel.editor->setGradientPort(nullptr);
  panel.window->grab();
}

TEST_P(Lifetimes, APortIsReplacedInADrag) {
  panel.press({panel.xOf(0.25), 5});
  panel.move({panel.xOf(0.25), 60});
  const auto other = std::make_shared<VRTGradientPort>("inputGradient");
  other->setValue(Panel::gradientAt({0.3, 0.7}));
  panel.editor->setGradientPort(other.get());
  panel.move({panel.xOf(0.5), 5});
  panel.release();
  EXPECT_EQ(panel.positions(), (std::vector<double>{0.3, 0.7}));
  EXPECT_EQ(panel.log, "start change change end") << "all of it told by the first port";
}
