// SPDX-License-Identifier: BSD-3-Clause
#include "GradientEditor/VRTGradientEditorLayout.h"
#include "Tests/Support/GradientScene.h"

#include <QDropEvent>
#include <QMimeData>

namespace {

void expectFrame(QWidget* part, NSRect expected) {
  const NSRect frame = NSGetFrame(*part);
  EXPECT_TRUE(frame.origin.x == expected.origin.x && frame.origin.y == expected.origin.y &&
              NSEqualSizes(frame.size, expected.size))
      << part->objectName().toStdString();
}

void expectLayout(const GradientScene& panel, double width) {
  const VRTGradientEditorLayout layout(width, true);
  EXPECT_EQ(panel.editor->frame().size.height, 75);
  expectFrame(panel.part("masterView"), NSMakeRect(0, 0, width, 75));
  expectFrame(panel.part("gradientView"), layout.preview);
  expectFrame(panel.part("gradientGutterRGB"), layout.gutterRGB);
  expectFrame(panel.part("gradientGutterAlpha"), layout.gutterAlpha);
  expectFrame(panel.part("rgbSpread"), layout.rgbSpread);
  expectFrame(panel.part("rgbFlop"), layout.rgbFlop);
  expectFrame(panel.part("alphaSpread"), layout.alphaSpread);
  expectFrame(panel.part("alphaFlop"), layout.alphaFlop);
}

// In the order of the Tab key.
constexpr const char* kOptionalParts[] = {"gradientGutterAlpha", "alphaSpread", "alphaFlop",
                                          "gradientGutterRGB",   "rgbSpread",   "rgbFlop"};

}  // namespace

TEST(Editor, LaysItsPartsOutForEveryWidth) {
  GradientScene panel;
  expectLayout(panel, 236);
  panel.editor->setFrameSize({612, 75});
  expectLayout(panel, 612);
  panel.editor->setFrameSize({150, 75});
  expectLayout(panel, 150);
}

TEST(Editor, ShowsOnlyThePreviewWithoutAGradient) {
  GradientScene panel;
  QWidget* const gutter = panel.part("gradientGutterRGB");
  panel.port->setValue(nullptr);
  EXPECT_EQ(panel.editor->frame().size.height, 25);
  for (const char* name : kOptionalParts) EXPECT_EQ(panel.part(name), nullptr) << name;
  expectFrame(panel.part("gradientView"), VRTGradientEditorLayout(236, false).preview);
  panel.editorPart().rgbSpread(nullptr);
  panel.editorPart().alphaFlop(nullptr);
  EXPECT_EQ(panel.takeLog(), "change") << "of the value itself";

  panel.editor->setFrameSize({300, 25});
  panel.port->setValue(panel.value);
  expectLayout(panel, 300);
  EXPECT_EQ(panel.part("gradientGutterRGB"), gutter) << "the same one, kept meanwhile";
  for (const char* name : kOptionalParts) EXPECT_TRUE(panel.part(name)->isVisible()) << name;

  EXPECT_FALSE(panel.editorPart().manageSubview(gutter, true));
  EXPECT_FALSE(panel.editorPart().manageSubview(gutter, false));
  EXPECT_FALSE(panel.editorPart().manageSubview(gutter, false));
  EXPECT_TRUE(panel.editorPart().manageSubview(gutter, true));
}

TEST(Editor, ButtonsSpreadAndFlop) {
  const struct {
    const char* button;
    bool alpha;
    std::vector<double> expected;
  } cases[] = {{"rgbSpread", false, {0, 1.0 / 3, 2.0 / 3, 1}},
               {"alphaSpread", true, {0, 1.0 / 3, 2.0 / 3, 1}},
               {"rgbFlop", false, {1, 0.75, 0.4, 0}},
               {"alphaFlop", true, {1, 0.75, 0.4, 0}}};
  for (const auto& each : cases) {
    GradientScene panel(each.alpha);
    QTest::mouseClick(panel.part(each.button), Qt::LeftButton);
    const std::vector<double> positions = panel.positions();
    for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(positions[i], each.expected[i], 1e-12) << each.button;
    EXPECT_EQ(panel.takeLog(), "change") << each.button;
    EXPECT_FALSE(panel.part(each.button)->accessibleName().isEmpty());
  }
}

TEST(Editor, NeedsNoPort) {
  VRTGradientEditor editor(NSMakeRect(0, 0, 236, 76));
  editor.update();
  EXPECT_EQ(editor.getSelectedSample(), nullptr);
  EXPECT_EQ(editor.getGradientChannel(), nullptr);
  editor.setEnabled(true);
  editor.setGradientPort(nullptr);
  EXPECT_EQ(editor.frame().size.height, 25);
  editor.updateSelectedSampleRGBFrom(nullptr);
}

namespace {

// What a picker does, without its window: opens one and takes the color at a place of its swatch.
template <class Check>
void pick(GradientScene& panel, double position, QPoint place, Check check) {
  panel.press({panel.xOf(position), 5}, {}, Qt::RightButton);
  ASSERT_NE(VRTTransientColorPicker::panel(), nullptr);
  QMouseEvent move(QEvent::MouseMove, place, VRTTransientColorPicker::panel()->mapToGlobal(place), Qt::NoButton,
                   Qt::NoButton, {});
  QApplication::sendEvent(VRTTransientColorPicker::panel(), &move);
  check(VRTTransientColorPicker::current()->color());
  if (auto* picker = VRTTransientColorPicker::current()) picker->cancel();
  panel.release({}, Qt::RightButton);
}

}  // namespace

TEST(Editor, PickedColorsAreStoredInSinglePrecisionAndPutBackOnCancel) {
  GradientScene colors;
  auto* color = dynamic_cast<VRTChannelGradientSampleRGB*>(colors.sample(1));
  color->green = 0.3;
  pick(colors, 0.25, {40, 40}, [&](const std::optional<NSColor>& picked) {
    ASSERT_TRUE(picked);
    volatile float red = static_cast<float>(picked->redComponent());
    volatile float blue = static_cast<float>(picked->blueComponent());
    EXPECT_EQ(color->red, red);
    EXPECT_EQ(color->blue, blue);
  });
  EXPECT_EQ(color->green, 0.3) << "exactly what it was";

  GradientScene opacities(true);
  auto* opacity = dynamic_cast<VRTChannelGradientSampleAlpha*>(opacities.sample(1));
  const double before = opacity->alpha;
  pick(opacities, 0.25, {40, 12}, [&](const std::optional<NSColor>& picked) {
    ASSERT_TRUE(picked);
    volatile float grey = static_cast<float>(picked->redComponent());
    EXPECT_EQ(opacity->alpha, grey);
  });
  EXPECT_EQ(opacity->alpha, before);
}

TEST(Editor, ColorsGoToTheDelegateInstead) {
  struct Delegate : VRTGradientEditorDelegate {
    void updateSelectedSampleRGBFrom(VRTTransientColorPicker* picker) override { got += picker ? "rgb " : "null "; }
    void updateSelectedSampleAlphaFrom(VRTTransientColorPicker*) override { got += "alpha "; }
    std::string got;
  };
  GradientScene panel;
  auto delegate = std::make_unique<Delegate>();
  panel.editorPart().setDelegate(delegate.get());
  const auto* color = dynamic_cast<VRTChannelGradientSampleRGB*>(panel.sample(1));
  const double red = color->red;
  pick(panel, 0.25, {40, 40}, [](const auto&) {});
  EXPECT_EQ(delegate->got.substr(0, 4), "rgb ");
  panel.editorPart().updateSelectedSampleAlphaFrom(nullptr);
  EXPECT_TRUE(delegate->got.ends_with("alpha "));
  EXPECT_EQ(color->red, red);
  EXPECT_EQ(panel.takeLog(), "");

  delegate.reset();
  EXPECT_EQ(panel.editorPart().delegate(), nullptr) << "forgotten";
  panel.clickSample(2);
  EXPECT_EQ(panel.selected(), panel.sample(2));
}

TEST(Editor, DropsOfColorsReachSamplesOnly) {
  GradientScene panel;
  panel.clickSample(1);
  panel.takeLog();
  auto* third = dynamic_cast<VRTChannelGradientSampleRGB*>(panel.sample(2));
  const auto drop = [&](NSPoint point, const QMimeData& data) {
    const QPointF place = panel.gutter->toWidget(NSPoint{point.x, point.y + 0.5});
    QDragEnterEvent enter(place.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(panel.gutter, &enter);
    QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(panel.gutter, &event);
    return enter.isAccepted() && event.isAccepted();
  };
  QMimeData color;
  color.setColorData(QColor::fromRgbF(0.2f, 0.4f, 0.6f, 0.1f));
  EXPECT_FALSE(drop({panel.xOf(0.8), 5}, color)) << "no marker there";
  EXPECT_FALSE(drop({panel.xOf(0.425), 5}, color)) << "a middle point beside the selection";
  QMimeData text;
  text.setText("blue");
  EXPECT_FALSE(drop({panel.xOf(0.6), 5}, text));
  EXPECT_EQ(third->red, 0.5);

  panel.part("gradientView")->grab();
  const auto* preview = dynamic_cast<VRTGradientView*>(panel.part("gradientView"));
  ASSERT_NE(preview, nullptr);
  const QImage before = panel.part("gradientView")->grab().toImage();
  EXPECT_TRUE(drop({panel.xOf(0.6), 5}, color));
  EXPECT_NEAR(third->red, 0.2, 1e-4);
  EXPECT_NEAR(third->green, 0.4, 1e-4);
  EXPECT_NEAR(third->blue, 0.6, 1e-4);
  EXPECT_NE(panel.part("gradientView")->grab().toImage(), before) << "the preview follows";
  EXPECT_EQ(panel.takeLog(), "");

  GradientScene opacities(true);
  QDragEnterEvent enter(QPoint(60, 5), Qt::CopyAction, &color, Qt::LeftButton, {});
  QApplication::sendEvent(opacities.gutter, &enter);
  EXPECT_FALSE(enter.isAccepted()) << "opacities take no colors";
}

TEST(Editor, ManyChangesMakeOnePaint) {
  struct Counter : QObject {
    bool eventFilter(QObject*, QEvent* event) override {
      paints += event->type() == QEvent::Paint;
      return false;
    }
    int paints = 0;
  } counter;
  GradientScene panel;
  panel.window->grab();
  QCoreApplication::processEvents();
  for (const char* name : {"gradientView", "gradientGutterRGB", "gradientGutterAlpha"}) {
    panel.part(name)->installEventFilter(&counter);
  }
  for (int i = 0; i < 5; ++i) {
    const VRTPortChange change(panel.port);
    panel.sample(1)->position += 0.01;
  }
  QTest::qWait(50);
  EXPECT_EQ(counter.paints, 3);
}

TEST(Editor, TabGoesThroughThePanelFromTheTop) {
  GradientScene panel;
  panel.focus(panel.part(kOptionalParts[0]));
  for (const char* name : kOptionalParts) {
    EXPECT_EQ(QApplication::focusWidget(), panel.part(name)) << name;
    panel.key(Qt::Key_Tab);
  }
}

TEST(Editor, KeepsItsPortAndForgetsSamplesThatLeave) {
  GradientScene panel;
  panel.clickSample(1);
  VRTChannelGradientSample* sample = panel.sample(1);
  {
    const VRTPortChange change(panel.port);
    panel.folder().removeDescendant(sample);
  }
  EXPECT_EQ(panel.selected(), nullptr);
  delete sample;
  panel.clickSample(2);
  panel.folder().deleteSample(0);  // the first one
  panel.window->grab();
  EXPECT_NE(panel.selected(), nullptr);

  const std::weak_ptr<VRTGradientPort> port = panel.port;
  panel.letGoOfPort();
  panel.port.reset();
  panel.value.reset();
  EXPECT_FALSE(port.expired());
  panel.clickSample(1);
  panel.window->grab();
  delete panel.editor;
  EXPECT_TRUE(port.expired());
}
