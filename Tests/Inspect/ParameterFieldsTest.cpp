// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/ParameterFields.h"

#include "Channels/VRTChannelGradient.h"
#include "Channels/VRTChannelHistogram.h"
#include "Controls/VRTLocalizedText.h"
#include "Controls/VRTTransientColorPicker.h"
#include "Editors/VRTEditors.h"
#include "GradientEditor/VRTGradientEditor.h"
#include "HistogramEditor/VRTHistogramEditor.h"
#include "Host/Inspect/ColorSwatch.h"
#include "Host/Inspect/DocumentActions.h"
#include "Host/Inspect/EditorSlot.h"
#include "Host/Inspect/MessageBar.h"
#include "Host/Inspect/ParameterClipboard.h"
#include "Host/Inspect/ParameterSection.h"
#include "Host/Texts/GradientStops.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTObjects.h"
#include "Tests/Inspect/InspectFixture.h"
#include "Tests/Support/EnglishTexts.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDrag>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QTest>
#include <QUrl>

namespace {

using inspect_test::handleEvents;

// The section of a gradient or of levels in a window, with a history.
class ParameterFieldsTest : public testing::Test {
 protected:
  ParameterFieldsTest() {
    readEnglishTexts();
    QLocale::setDefault(QLocale::c());
    VRTStartEditors();
    gradient.setValue(VRTGradient::gradient());
    levels.setValue(VRTHistogram::histogram());
    QApplication::clipboard()->clear();
  }
  ~ParameterFieldsTest() override {
    if (auto* picker = VRTTransientColorPicker::current()) picker->cancel();
    window.reset();
  }
  // Smooth color stops, as red as their place, below one opaque stop.
  void useStops(const std::vector<double>& places) {
    host::GradientStops stops{{}, {host::kOpaque}};
    for (const double place : places) stops.colors.push_back({place, 0.5, VRTGradientSmooth, {place, 0.2, 0.4}});
    ASSERT_TRUE(gradient.setStateValue(host::stateOfStops(stops), nullptr));
  }
  void open(QCPort& of) {
    section = nullptr;
    window.reset();
    document = std::make_unique<host::ParameterDocument>(std::vector<QCPort*>{&of});
    window = std::make_unique<QWidget>();
    messages = new host::MessageBar(window.get());
    actions = new host::DocumentActions(*document, *messages, *window,
                                        {.valueChanged = [](QCPort&) {},
                                         .loaded = [](QCPort&) {},
                                         .changed =
                                             [this] {
                                               if (section) section->updateTitle();
                                             }});
    section = new host::ParameterSection(of, *actions, host::ParameterSection::Folding::None, window.get());
    window->resize(260, 460);
    section->resize(240, 440);
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    handleEvents();
  }
  VRTChannelGradient& channel() { return *dynamic_cast<VRTGradient&>(*gradient.rawValue()).kxChannelGradient(); }
  VRTChannelHistogram& levelsChannel() { return *dynamic_cast<VRTHistogram&>(*levels.rawValue()).kxChannelHistogram(); }
  VRTGradientEditor& editor() { return dynamic_cast<VRTGradientEditor&>(*section->slot().editor()); }
  VRTChannelGradientSampleRGB* stop(std::size_t index) {
    return dynamic_cast<VRTChannelGradientSampleRGB*>(channel().rgbFolder.getDescendants().at(index));
  }
  void select(std::size_t index) { editor().setSelectedSample(stop(index), false, false); }
  std::string shown(const QString& name) { return line(name)->text().toStdString(); }
  QLineEdit* line(const QString& name) {
    for (auto* each : section->findChildren<QLineEdit*>()) {
      if (each->accessibleName() == name) return each;
    }
    ADD_FAILURE() << name.toStdString();
    return nullptr;
  }
  QAbstractButton* button(const QString& name) {
    for (auto* each : section->findChildren<QAbstractButton*>()) {
      if (each->accessibleName() == name) return each;
    }
    ADD_FAILURE() << name.toStdString();
    return nullptr;
  }
  std::string title() {
    for (auto* each : section->fields()->findChildren<QLabel*>()) return each->text().toStdString();
    return {};
  }
  void type(const QString& name, const QString& text) {
    line(name)->setFocus(Qt::TabFocusReason);
    line(name)->selectAll();
    QTest::keyClicks(line(name), text);
    QTest::keyClick(line(name), Qt::Key_Return);
    handleEvents();
  }
  void pasteInto(QWidget* widget) {
    widget->setFocus(Qt::TabFocusReason);
    QTest::keyClick(widget, Qt::Key_V, Qt::ControlModifier);
    handleEvents();
  }
  static void putOnClipboard(const QString& text) { QApplication::clipboard()->setText(text); }
  // How many steps back the history goes; the values are as at first afterwards.
  int steps() {
    handleEvents();
    int count = 0;
    for (; actions->undoAction->isEnabled(); ++count) actions->undoAction->trigger();
    return count;
  }
  int dropOnSwatch(const QMimeData& mime) {
    QWidget* swatch = button("Color of the stop");
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &mime, Qt::LeftButton, {});
    QApplication::sendEvent(swatch, &enter);
    if (!enter.isAccepted()) return 0;
    QDropEvent drop({5, 5}, Qt::CopyAction, &mime, Qt::LeftButton, {});
    QApplication::sendEvent(swatch, &drop);
    return 1;
  }

  VRTGradientPort gradient{"gradient"};
  VRTHistogramPort levels{"levels"};
  std::unique_ptr<host::ParameterDocument> document;
  std::unique_ptr<QWidget> window;
  host::MessageBar* messages = nullptr;
  host::DocumentActions* actions = nullptr;
  host::ParameterSection* section = nullptr;
};

TEST_F(ParameterFieldsTest, ShowTheSelectedStop) {
  useStops({0, 0.25, 1});
  open(gradient);
  EXPECT_EQ(title(), "No stop selected");
  EXPECT_FALSE(line("Position")->isEnabled());
  select(1);
  EXPECT_EQ(title(), "Color stop 2 of 3");
  EXPECT_EQ(shown("Position") + " " + shown("Red") + " " + shown("Color in hexadecimal"), "0.25 0.25 403366");
  EXPECT_TRUE(button("Smooth")->isChecked());
  stop(1)->red = 1.5;
  {
    const VRTPortChange change(VRTObjectReference<QCPort>(&gradient).lock());
    stop(1)->interpolation = VRTGradientConstant;
  }
  EXPECT_EQ(shown("Red") + " " + shown("Color in hexadecimal"), "1.5 ff3366");
  EXPECT_TRUE(button("Constant")->isChecked());
  EXPECT_FALSE(line("Middle point of the segment that begins here")->isEnabled()) << "smooth segments have one";

  QTest::mouseClick(button("Next stop"), Qt::LeftButton);
  EXPECT_EQ(title(), "Color stop 3 of 3");
  EXPECT_FALSE(button("Smooth")->isEnabled()) << "no segment begins there";
  QTest::mouseClick(button("Next stop"), Qt::LeftButton);
  EXPECT_EQ(title(), "Opacity stop 1 of 1");
  EXPECT_TRUE(line("Opacity")->isVisible() && !line("Red")->isVisible());
  EXPECT_EQ(shown("Opacity"), "1");
  QTest::mouseClick(button("Previous stop"), Qt::LeftButton);
  EXPECT_EQ(title(), "Color stop 3 of 3");

  gradient.setValue(nullptr);
  EXPECT_EQ(title(), "No stop selected");
  delete section->slot().editor();
  gradient.setValue(VRTGradient::gradient());
  QTest::mouseClick(button("Next stop"), Qt::LeftButton);
  EXPECT_EQ(title(), "No stop selected") << "without the editor nothing is selected";
}

TEST_F(ParameterFieldsTest, EachChangeOfAStopIsOneStep) {
  useStops({0, 0.25, 1});
  open(gradient);
  select(1);
  const VRTChannelGradientSampleRGB* changed = stop(1);
  type("Red", "1.5");
  type("Green", "1/3");
  EXPECT_TRUE(changed->red == 1.5 && changed->green == 1 / 3.0);
  type("Color in hexadecimal", "#0f8");
  EXPECT_TRUE(changed->red == 0 && changed->green == 1 && changed->blue == 136 / 255.0);
  type("Color in hexadecimal", "color(srgb 2 0 0)");
  EXPECT_EQ(changed->red, 2);
  type("Middle point of the segment that begins here", "30%");
  EXPECT_EQ(changed->middle, 0.3);
  QTest::mouseClick(button("Linear"), Qt::LeftButton);
  EXPECT_EQ(changed->interpolation, VRTGradientLinear);
  EXPECT_EQ(steps(), 6);
  EXPECT_EQ(stop(1)->green, 0.2);
  select(1);
  type("Blue", "0.9");
  QTest::keyClick(line("Blue"), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(stop(1)->blue, 0.4) << "the keys are the window's when nothing is being typed";
  QTest::keyClick(line("Blue"), Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(stop(1)->blue, 0.9);
}

TEST_F(ParameterFieldsTest, MovedStopsAreSortedAndNeverMerge) {
  useStops({0, 0.25, 0.26, 1});
  open(gradient);
  select(1);
  const VRTChannelGradientSampleRGB* moved = stop(1);
  type("Position", "0.26");
  EXPECT_EQ(moved->position, 0.25);
  EXPECT_TRUE(line("Position")->accessibleDescription().contains("0.26"));
  QTest::keyClick(line("Position"), Qt::Key_Escape);
  QTest::keyClick(line("Position"), Qt::Key_Up);
  ASSERT_EQ(channel().rgbFolder.getNumberOfDescendants(), 4u) << "a step passes the other stop by";
  EXPECT_GT(moved->position, 0.26);
  EXPECT_EQ(stop(2), moved) << "and they are sorted";
  EXPECT_EQ(VRTTextOfString(moved->getName()), "RGB3");
  type("Position", "0.1");
  EXPECT_EQ(stop(1), moved);
  EXPECT_EQ(editor().getSelectedSample(), moved);
  type("Position", "200%");
  EXPECT_EQ(moved->position, 0.1) << "the end is taken";
  EXPECT_EQ(steps(), 2);
}

TEST_F(ParameterFieldsTest, WhatIsBeingTypedBelongsToItsStop) {
  useStops({0, 0.25, 1});
  open(gradient);
  select(0);
  QLineEdit* red = line("Red");
  red->setFocus(Qt::TabFocusReason);
  red->selectAll();
  QTest::keyClicks(red, "0.7");
  select(1);
  EXPECT_EQ(red->text(), "0.25");
  QTest::keyClick(red, Qt::Key_Return);
  EXPECT_TRUE(stop(0)->red == 0 && stop(1)->red == 0.25);
}

TEST_F(ParameterFieldsTest, ColorsComeAndGoByTheSwatch) {
  useStops({0, 0.25, 1});
  open(gradient);
  QMimeData colored, named, other;
  colored.setColorData(QColor(0, 128, 255));
  named.setText("orange");
  other.setText("0.5");
  EXPECT_EQ(dropOnSwatch(colored), 0) << "nothing is selected";
  select(1);
  EXPECT_EQ(dropOnSwatch(colored), 1);
  EXPECT_EQ(stop(1)->green, 128 / 255.0) << "to the last digit";
  EXPECT_EQ(dropOnSwatch(other), 0);
  handleEvents();
  EXPECT_EQ(dropOnSwatch(named), 1);
  EXPECT_EQ(stop(1)->green, 165 / 255.0);

  stop(1)->red = 1.25;
  section->fields()->refresh();
  QAbstractButton* swatch = button("Color of the stop");
  swatch->setFocus(Qt::TabFocusReason);
  QTest::keyClick(swatch, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "#ffa500");
  EXPECT_TRUE(QApplication::clipboard()->mimeData()->hasColor());
  select(2);
  pasteInto(swatch);
  EXPECT_EQ(stop(2)->red, 1.25) << "between windows nothing is lost";
  pasteInto(line("Position"));
  select(0);
  pasteInto(&editor());
  EXPECT_EQ(stop(0)->red, 1.25) << "a color goes to the stop from anywhere in the section";

  QTest::mousePress(swatch, Qt::LeftButton, {}, {5, 5});
  QMouseEvent far(QEvent::MouseMove, {35, 35}, swatch->mapToGlobal(QPointF(35, 35)), Qt::NoButton, Qt::LeftButton, {});
  QApplication::sendEvent(swatch, &far);
  const auto* drag = swatch->findChild<QDrag*>();  // over at once, without a display, but not yet deleted
  ASSERT_NE(drag, nullptr);
  EXPECT_EQ(drag->mimeData()->text(), "#ffa500");
  QTest::mouseRelease(swatch, Qt::LeftButton, {}, {5, 5});
  EXPECT_EQ(VRTTransientColorPicker::current(), nullptr) << "a drag is no click";

  swatch->click();
  auto* picker = VRTTransientColorPicker::current();
  ASSERT_NE(picker, nullptr);
  EXPECT_NE(VRTTransientColorPicker::panel(), nullptr);
  picker->cancel();
  handleEvents();
  EXPECT_EQ(stop(0)->red, 1.25);
}

TEST_F(ParameterFieldsTest, LevelsFollowTheChannelThatIsChosen) {
  open(levels);
  auto* popUp = section->findChild<QComboBox*>("popUp");
  ASSERT_NE(popUp, nullptr);
  levelsChannel().setGammaValue(2.2, 2, 0, 0);
  EXPECT_EQ(shown("Gamma"), "1");
  popUp->setCurrentIndex(2);
  emit popUp->activated(2);
  EXPECT_EQ(shown("Gamma"), "2.2") << "choosing announces nothing";
  const std::pair<const char*, double VRTChannelHistogramSample::*> values[] = {
      {"Input black", &VRTChannelHistogramSample::blackIn},
      {"Gamma", &VRTChannelHistogramSample::gamma},
      {"Input white", &VRTChannelHistogramSample::whiteIn},
      {"Output black", &VRTChannelHistogramSample::blackOut},
      {"Output white", &VRTChannelHistogramSample::whiteOut}};
  for (const auto& [name, member] : values) {
    const bool isGamma = QString(name) == "Gamma";
    for (const auto& [typed, value] : {std::pair{"64/255", 64 / 255.0}, {"-1", 0.0}, {"9", isGamma ? 5.0 : 1.0}}) {
      type(name, typed);
      EXPECT_EQ(levelsChannel().samples[2].*member, value) << name;
    }
  }
  EXPECT_EQ(levelsChannel().samples[0].gamma, 1);
  EXPECT_EQ(steps(), 15);
  section->setFolded(true);
  EXPECT_FALSE(line("Gamma")->isVisible());
}

TEST_F(ParameterFieldsTest, ParametersAreCopiedAndPasted) {
  useStops({0, 0.3, 1});
  open(gradient);
  const PropertyList first = *gradient.stateValue();
  editor().setFocus();
  window->findChild<QWidget*>("gradientGutterRGB")->setFocus();
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_C, Qt::ControlModifier);
  const QMimeData* mime = QApplication::clipboard()->mimeData();
  ASSERT_TRUE(mime->hasFormat(host::kStateMimeType));
  EXPECT_TRUE(mime->text().contains("30%")) << "people can read it";
  const QString text = mime->text();

  const QString texts[] = {"linear-gradient(to right, #ff0000, #00ff00 40%, #0000ff)", "red, lime 40%, blue"};
  for (const QString& each : texts) {
    useStops({0, 0.5, 1});
    handleEvents();
    document->forgetHistory();
    putOnClipboard(each);
    select(0);
    pasteInto(line("Position"));
    EXPECT_TRUE(stop(1)->green == 1 && stop(1)->position == 0.4) << each.toStdString();
    EXPECT_EQ(steps(), 1);
  }
  putOnClipboard(text);
  section->paste();
  EXPECT_EQ(*gradient.stateValue(), first) << "as text nothing is lost either";

  section->copyAsCss();
  EXPECT_TRUE(QApplication::clipboard()->text().startsWith("linear-gradient("));

  putOnClipboard("1/4");
  select(0);
  line("Middle point of the segment that begins here")->selectAll();
  pasteInto(line("Middle point of the segment that begins here"));
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  EXPECT_EQ(stop(0)->middle, 0.25) << "numbers are typed";
}

TEST_F(ParameterFieldsTest, WhatCannotBePastedIsSaid) {
  const TemporaryFolder folder;
  open(levels);
  document->save(levels, folder.path() + "/a.levels");
  section->copy();
  auto asState = std::make_unique<QMimeData>();
  asState->setData(host::kStateMimeType, QApplication::clipboard()->mimeData()->data(host::kStateMimeType));
  open(gradient);
  const PropertyList before = *gradient.stateValue();
  QMimeData damaged, file, color, words, nothing;
  damaged.setData(host::kStateMimeType, "<plist");
  file.setUrls({QUrl::fromLocalFile(QString::fromStdString(folder.path() + "/none.gradient"))});
  color.setText("#ff0000");
  words.setText("lorem ipsum");
  for (const auto& [mime, said] : {std::pair<const QMimeData*, const char*>{asState.get(), "levels"},
                                   {&damaged, "clipboard"},
                                   {&file, "none.gradient"},
                                   {&color, "select a color stop"},
                                   {&words, "lorem"},
                                   {&nothing, "nothing that fits"}}) {
    messages->clear();
    section->paste(*mime);
    EXPECT_TRUE(messages->isVisible());
    EXPECT_TRUE(messages->text().contains(said)) << messages->text().toStdString();
  }
  EXPECT_EQ(*gradient.stateValue(), before);

  open(levels);
  levelsChannel().setGammaValue(3, 0, 0, 0);
  QMimeData saved;
  saved.setUrls({QUrl::fromLocalFile(QString::fromStdString(folder.path() + "/a.levels"))});
  section->paste(saved);
  EXPECT_EQ(levelsChannel().samples[0].gamma, 1);
}

}  // namespace
