// SPDX-License-Identifier: BSD-3-Clause
#include "GradientEditor/VRTGradientEditorLayout.h"
#include "Tests/Support/GradientScene.h"
#include "Tests/TarnKit/RecordingView.h"

#include <QDropEvent>
#include <QMimeData>

namespace {

void expectLayout(const GradientScene& panel, double width) {
  const VRTGradientEditorLayout layout(width, true);
  EXPECT_EQ(panel.editor->frame().size.height, 75);
  const std::pair<const char*, NSRect> frames[] = {{"masterView", NSMakeRect(0, 0, width, 75)},
                                                   {"gradientView", layout.preview},
                                                   {"gradientGutterRGB", layout.gutterRGB},
                                                   {"gradientGutterAlpha", layout.gutterAlpha},
                                                   {"rgbSpread", layout.rgbSpread},
                                                   {"rgbFlop", layout.rgbFlop},
                                                   {"alphaSpread", layout.alphaSpread},
                                                   {"alphaFlop", layout.alphaFlop}};
  for (const auto& [name, frame] : frames) EXPECT_EQ(NSGetFrame(*panel.part(name)), frame) << name;
}

// In the order of the Tab key.
constexpr const char* kOptionalParts[] = {"gradientGutterAlpha", "alphaSpread", "alphaFlop",
                                          "gradientGutterRGB",   "rgbSpread",   "rgbFlop"};

}  // namespace

TEST(Editor, LaysItsPartsOutForEveryWidth) {
  GradientScene panel;
  for (const double width : {236, 612, 150}) {
    panel.editor->setFrameSize({width, 75});
    expectLayout(panel, width);
  }
}

TEST(Editor, ShowsOnlyThePreviewWithoutAGradient) {
  GradientScene panel;
  QWidget* const gutter = panel.part("gradientGutterRGB");
  panel.port->setValue(nullptr);
  EXPECT_EQ(panel.editor->frame().size.height, 25);
  for (const char* name : kOptionalParts) EXPECT_EQ(panel.part(name), nullptr) << name;
  EXPECT_EQ(NSGetFrame(*panel.part("gradientView")), VRTGradientEditorLayout(236, false).preview);
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
  for (const std::string name : {"rgbSpread", "alphaSpread", "rgbFlop", "alphaFlop"}) {
    GradientScene panel(name.starts_with("alpha"));
    QWidget* button = panel.part(name.c_str());
    QTest::mouseClick(button, Qt::LeftButton);
    const std::vector<double> spread{0, 1.0 / 3, 2.0 / 3, 1}, flopped{1, 0.75, 0.4, 0};
    for (std::size_t i = 0; i < 4; ++i) {
      EXPECT_NEAR(panel.positions()[i], (name.ends_with("Flop") ? flopped : spread)[i], 1e-12) << name;
    }
    EXPECT_EQ(panel.takeLog(), "change") << name;
    EXPECT_FALSE(button->accessibleName().isEmpty());
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

// Opens a picker on the second sample and takes the color at a place of its swatch.
NSColor pick(GradientScene& panel, QPoint place) {
  panel.press({panel.xOf(0.25), 5}, {}, Qt::RightButton);
  GradientScene::hoverPicker(place);
  return VRTTransientColorPicker::current()->color().value();
}

}  // namespace

TEST(Editor, PickedColorsAreStoredInSinglePrecisionAndPutBackOnCancel) {
  for (const bool alpha : {false, true}) {
    GradientScene panel(alpha);
    auto* color = dynamic_cast<VRTChannelGradientSampleRGB*>(panel.sample(1));
    auto* opacity = dynamic_cast<VRTChannelGradientSampleAlpha*>(panel.sample(1));
    (alpha ? opacity->alpha : color->red) = 0.3;  // has no exact form in single precision
    const auto values = [&] {
      return alpha ? std::vector{opacity->alpha} : std::vector{color->red, color->green, color->blue};
    };
    const std::vector<double> before = values();
    const NSColor picked = pick(panel, alpha ? QPoint(40, 12) : QPoint(40, 40));
    const double components[] = {picked.redComponent(), picked.greenComponent(), picked.blueComponent()};
    for (std::size_t i = 0; i < before.size(); ++i) EXPECT_EQ(values()[i], static_cast<float>(components[i]));
    EXPECT_NE(values(), before);
    VRTTransientColorPicker::current()->cancel();
    panel.release({}, Qt::RightButton);
    EXPECT_EQ(values(), before);
  }
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
  pick(panel, {40, 40});
  VRTTransientColorPicker::current()->cancel();
  panel.release({}, Qt::RightButton);
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
  QMimeData color;
  color.setColorData(QColor::fromRgbF(0.2f, 0.4f, 0.6f, 0.1f));
  const auto drop = [&](double x) {
    const QPointF place = panel.gutter->toWidget(NSPoint{x, 5.5});
    QDragEnterEvent enter(place.toPoint(), Qt::CopyAction, &color, Qt::LeftButton, {});
    QApplication::sendEvent(panel.gutter, &enter);
    QDropEvent event(place, Qt::CopyAction, &color, Qt::LeftButton, {});
    QApplication::sendEvent(panel.gutter, &event);
    return enter.isAccepted() && event.isAccepted();
  };
  EXPECT_FALSE(drop(panel.xOf(0.8))) << "no marker there";
  EXPECT_FALSE(drop(panel.xOf(0.425))) << "a middle point beside the selection";
  EXPECT_EQ(third->red, 0.5);

  const QImage before = panel.part("gradientView")->grab().toImage();
  EXPECT_TRUE(drop(panel.xOf(0.6)));
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

TEST(Editor, TellsOfItsSelection) {
  GradientScene panel;
  std::vector<const VRTChannelGradientSample*> told;
  std::function<void()> alsoDo;
  const auto observation = NSNotificationCenter::defaultCenter().addObserver(
      kVRTGradientSelectionDidChange, &panel.editorPart(), [&](const NSNotification&) {
        told.push_back(panel.selected());
        if (alsoDo) alsoDo();
      });
  panel.clickSample(2);
  EXPECT_EQ(told, std::vector<const VRTChannelGradientSample*>{panel.sample(2)});
  panel.port->setValue(GradientScene::gradientAt({0, 0.25, 0.6, 1}));
  ASSERT_EQ(told.size(), 2u) << "the same stop of another gradient";
  EXPECT_EQ(told.back(), panel.sample(2));
  { const VRTPortChange change(panel.port); }
  EXPECT_EQ(told.size(), 2u);
  panel.click({panel.xOf(0.1), 5});
  EXPECT_EQ(told.back(), nullptr);
  panel.clickSample(2);
  panel.editorPart().setGradientPort(nullptr);
  EXPECT_EQ(told.back(), nullptr);
  panel.editorPart().setGradientPort(panel.port.get());
  alsoDo = [&] { delete panel.editor; };
  panel.clickSample(1);
  EXPECT_EQ(panel.editor, nullptr);
}
