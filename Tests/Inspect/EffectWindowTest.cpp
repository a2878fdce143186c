// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/EffectWindow.h"

#include "Channels/VRTChannelGradient.h"
#include "Controls/VRTTransientColorPicker.h"
#include "Editors/VRTEditors.h"
#include "Host/Inspect/DocumentActions.h"
#include "Host/Inspect/EditorSlot.h"
#include "Host/Inspect/InspectorColumn.h"
#include "Host/Inspect/MessageBar.h"
#include "Host/Inspect/ParameterSection.h"
#include "Host/Inspect/TransportBar.h"
#include "Host/Messages/Failure.h"
#include "Host/Viewer/Viewer.h"
#include "Ports/VRTObjects.h"
#include "TarnCore/TCBitmap.h"
#include "Tests/Inspect/InspectFixture.h"
#include "Tests/Support/EnglishTexts.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSlider>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <filesystem>

namespace {

using inspect_test::CountingContext;
using inspect_test::handleEvents;
using inspect_test::optionsFor;
using inspect_test::writeFlatPicture;

class EffectWindowTest : public testing::Test {
 protected:
  EffectWindowTest() {
    readEnglishTexts();
    inspect_test::useEffects();
    VRTStartEditors();
    VortoSetExecutionContextProvider([this](QCPatch&) { return &context; });
  }
  ~EffectWindowTest() override {
    window.reset();
    host::provideExecutionContext();
  }
  void openLevels() {
    writeFlatPicture(at("in.png"), 0);
    open(optionsFor("Levels", {at("in.png")}));
  }
  void open(const host::InspectOptions& options) {
    session = std::make_unique<host::EffectSession>(options);
    window = std::make_unique<host::EffectWindow>(*session);
    window->renderNow();
    window->show();
    handleEvents();
  }
  QCPort& port(std::size_t index) { return *session->document().parameters().at(index); }
  std::string at(const std::string& name) const { return folder.path() + "/" + name; }
  QRgb shown() const {
    const std::uint8_t* pixel = window->preview().picture()->result->data;
    return qRgba(pixel[0], pixel[1], pixel[2], pixel[3]);
  }
  // As the levels editor changes them: in place, all colors darker or brighter.
  void setBlackOut(double black) {
    port(0).willChangeValue();
    dynamic_cast<VRTHistogram&>(*port(0).rawValue()).setBlackOut(black, 0);
    port(0).didChangeValue();
  }
  template <class Widget>
  Widget* editorOf(const QString& name) {
    for (auto* widget : window->findChildren<Widget*>()) {
      if (widget->accessibleName() == name) return widget;
    }
    return nullptr;
  }

  TemporaryFolder folder;
  CountingContext context;
  std::unique_ptr<host::EffectSession> session;
  std::unique_ptr<host::EffectWindow> window;
};

}  // namespace

TEST_F(EffectWindowTest, RendersOnceHoweverManyChangesWait) {
  openLevels();
  EXPECT_EQ(shown(), qRgb(0, 0, 0));
  const int before = window->renderCount();
  const int counted = context.queried;
  for (int i = 1; i <= 100; ++i) setBlackOut(i / 100.0);
  handleEvents();
  EXPECT_EQ(window->renderCount(), before + 1);
  EXPECT_EQ(shown(), qRgb(255, 255, 255));
  for (int i = 0; i < 10; ++i) {
    setBlackOut(i / 10.0);
    handleEvents();
  }
  EXPECT_EQ(window->renderCount(), before + 11);
  EXPECT_EQ(context.queried, counted) << "the image that flows in is the same: nothing to count";
}

TEST_F(EffectWindowTest, UndoRedoAndResetRenderToo) {
  openLevels();
  const auto& actions = window->actions();
  EXPECT_FALSE(actions.undoAction->isEnabled());
  setBlackOut(1);
  handleEvents();
  const std::pair<QAction*, int> steps[] = {
      {actions.undoAction, 0}, {actions.redoAction, 255}, {actions.resetAction, 0}, {actions.undoAction, 255}};
  for (const auto& [action, gray] : steps) {
    action->trigger();
    handleEvents();
    EXPECT_EQ(shown(), qRgb(gray, gray, gray)) << action->text().toStdString();
  }
}

TEST_F(EffectWindowTest, PlaysASequenceAndTheHistogramFollows) {
  for (int frame = 3; frame <= 6; ++frame) {
    writeFlatPicture(at("in." + std::to_string(frame) + ".png"), static_cast<std::uint8_t>(frame * 10));
  }
  host::InspectOptions options = optionsFor("Levels", {at("in.%d.png")});
  options.rate = 1000;
  open(options);
  EXPECT_EQ(shown(), qRgb(30, 30, 30));
  auto* slider = editorOf<QSlider>("Time");
  ASSERT_NE(slider, nullptr);
  EXPECT_EQ(slider->maximum(), 3);
  const int counted = context.queried;
  slider->setValue(2);
  EXPECT_EQ(shown(), qRgb(50, 50, 50));
  EXPECT_EQ(context.queried, counted + 1);

  QTest::keyClick(window.get(), Qt::Key_Space);
  EXPECT_TRUE(window->transport().isPlaying());
  const int before = window->renderCount();
  const int countedBefore = context.queried;
  const bool wentRound = QTest::qWaitFor([&] { return window->renderCount() >= before + 5; }, 20000);
  QTest::keyClick(window.get(), Qt::Key_Space);
  EXPECT_TRUE(wentRound);
  EXPECT_FALSE(window->transport().isPlaying());
  EXPECT_EQ(context.queried - countedBefore, window->renderCount() - before) << "once a frame";
  auto* title = window->column().section(port(0))->findChild<QAbstractButton*>();
  for (const bool shown : {false, true}) {
    title->setFocus();
    QTest::keyClick(title, Qt::Key_Space);
    EXPECT_EQ(window->column().section(port(0))->slot().isVisible(), shown) << "a button presses itself";
    EXPECT_FALSE(window->transport().isPlaying());
  }

  window->column().section(port(0))->setFolded(true);
  const int folded = context.queried;
  slider->setValue(0);
  slider->setValue(1);
  EXPECT_EQ(context.queried, folded) << "an editor that nobody sees costs nothing";
  EXPECT_EQ(shown(), qRgb(40, 40, 40));

  std::filesystem::remove(at("in.5.png"));
  window->transport().setPlaying(true);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !window->transport().isPlaying(); }, 20000));
  EXPECT_TRUE(window->messages().isVisible());
  EXPECT_TRUE(window->messages().text().contains("in.5.png")) << window->messages().text().toStdString();
  slider->setValue(0);
  EXPECT_FALSE(window->messages().isVisible());
}

TEST_F(EffectWindowTest, TransitionsHaveATimeAndNeedTwoImages) {
  writeFlatPicture(at("a.png"), 0);
  writeFlatPicture(at("b.png"), 200);
  EXPECT_THROW(host::EffectSession(optionsFor("Levls", {at("a.png")})), host::Failure);
  EXPECT_THROW(host::EffectSession(optionsFor("Levels", {at("none.png")})), host::Failure);
  EXPECT_THROW(host::EffectSession(optionsFor("Dissolve", {at("a.png")})), host::Failure) << "it mixes two";
  host::InspectOptions options = optionsFor("Dissolve", {at("a.png"), at("b.png")});
  options.time = 0.25;
  open(options);
  EXPECT_EQ(shown(), qRgb(50, 50, 50));
  auto* slider = editorOf<QSlider>("Time");
  slider->setValue(slider->maximum());
  EXPECT_EQ(shown(), qRgb(200, 200, 200));
}

TEST_F(EffectWindowTest, SpeaksThreeLanguages) {
  const std::pair<const char*, const char*> languages[] = {{"de", "&Datei"}, {"fr_FR", "&Fichier"}, {"en", "&File"}};
  for (const auto& [language, file] : languages) {
    setenv("LANGUAGE", language, 1);
    setenv("LC_ALL", "en_US.UTF-8", 1);
    openLevels();
    EXPECT_EQ(window->menuBar()->actions().front()->text(), file);
  }
  readEnglishTexts();
}

TEST_F(EffectWindowTest, RowsShowAndChangeTheirPorts) {
  open(optionsFor("Checkerboard"));
  auto* cell = editorOf<QDoubleSpinBox>("Cell Size");
  auto* depth = editorOf<QComboBox>("Depth");
  ASSERT_TRUE(cell && depth);
  const auto indexPort = [&](const std::string& key) -> QCIndexPort& {
    const auto& all = session->document().parameters();
    return dynamic_cast<QCIndexPort&>(**std::ranges::find(all, key, &QCPort::key));
  };
  auto& size = indexPort("inputCellSize");
  EXPECT_EQ(cell->value(), 8);
  EXPECT_EQ(cell->maximum(), 4096);
  size.setIndexValue(12);
  EXPECT_EQ(cell->value(), 12);
  cell->setValue(20);
  EXPECT_EQ(size.indexValue(), 20u);
  ASSERT_EQ(depth->count(), 3);
  depth->setFocus();
  QTest::keyClick(depth, Qt::Key_Down);
  EXPECT_EQ(indexPort("inputDepth").indexValue(), 1u);
  handleEvents();
  EXPECT_EQ(session->result()->bitsPerChannel, 16u);

  auto* slider = editorOf<QSlider>("Cell Size");
  ASSERT_NE(slider, nullptr);
  const QPoint handle(slider->width() / 100, slider->height() / 2);
  QTest::mousePress(slider, Qt::LeftButton, {}, handle);
  for (int x = 5; x < slider->width(); x += 5) {
    QTest::mouseMove(slider, QPoint(x, handle.y()));
    handleEvents();
  }
  QTest::mouseRelease(slider, Qt::LeftButton, {}, QPoint(slider->width() - 1, handle.y()));
  handleEvents();
  EXPECT_GT(size.indexValue(), 3500u);
  window->actions().undoAction->trigger();
  EXPECT_EQ(size.indexValue(), 20u) << "one drag, one step";
}

// However fast the next event comes.
TEST_F(EffectWindowTest, WhateverPeopleDoToAGradientIsOneStep) {
  writeFlatPicture(at("in.png"), 0);
  open(optionsFor("Gradient Map", {at("in.png")}));
  QCPort& gradient = *window->actions().activePort();
  auto* channel = dynamic_cast<VRTGradient&>(*gradient.rawValue()).kxChannelGradient();
  channel->rgbFolder.addSample(1, 0, 0, 0.25, 0.5, VRTGradientLinear);
  session->document().forgetHistory();
  auto* gutter = window->findChild<QWidget*>("gradientGutterRGB");
  ASSERT_NE(gutter, nullptr);
  const QPoint stop(5, gutter->height() - 6);
  std::vector<PropertyList> states{*gradient.stateValue()};

  for (const bool taken : {false, true}) {
    QTest::mousePress(window->windowHandle(), Qt::RightButton, {}, gutter->mapTo(window.get(), stop));
    QTest::mouseRelease(window->windowHandle(), Qt::RightButton, {}, gutter->mapTo(window.get(), stop));
    QWidget* panel = VRTTransientColorPicker::panel();
    ASSERT_NE(panel, nullptr);
    for (int x = 10; x < 60; ++x) {
      QMouseEvent move(QEvent::MouseMove, QPointF(x, 20), panel->mapToGlobal(QPointF(x, 20)), Qt::NoButton, {}, {});
      QApplication::sendEvent(panel, &move);
      handleEvents();
    }
    EXPECT_NE(*gradient.stateValue(), states[0]);
    taken ? QTest::mouseClick(panel, Qt::LeftButton, {}, {60, 20}) : VRTTransientColorPicker::current()->cancel();
    handleEvents();
    EXPECT_EQ(window->actions().undoAction->isEnabled(), taken);
  }
  states.push_back(*gradient.stateValue());
  for (const char* button : {"rgbSpread", "rgbFlop"}) {
    QTest::mouseClick(window->findChild<QWidget*>(button), Qt::LeftButton);
    states.push_back(*gradient.stateValue());
  }
  const auto last = QPoint(gutter->width() - 6, stop.y());
  for (const QColor& color : {QColor(Qt::green), QColor(Qt::blue)}) {
    QMimeData data;
    data.setColorData(color);
    for (const QPoint& place : {stop, last}) {
      QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, {});
      QApplication::sendEvent(gutter, &enter);
      QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, {});
      QApplication::sendEvent(gutter, &drop);
      EXPECT_TRUE(drop.isAccepted());
      states.push_back(*gradient.stateValue());
    }
  }
  handleEvents();
  EXPECT_EQ(shown(), qRgb(0, 0, 255)) << "a drop shows at once";

  window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  for (std::size_t i = states.size() - 1; i-- > 0;) {
    QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(*gradient.stateValue(), states[i]) << i;
  }
  EXPECT_FALSE(window->actions().undoAction->isEnabled());
  QTest::keyClick(window.get(), Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(*gradient.stateValue(), states[1]);
}

TEST_F(EffectWindowTest, AsksBeforeUnsavedEditsAreLost) {
  openLevels();
  struct {
    QMessageBox::StandardButton answer = QMessageBox::NoButton;  // to the question; none is expected
    QString path;                                                // for the file dialog; it is cancelled without one
  } person;
  int questions = 0;
  QTimer attention;
  attention.callOnTimeout([&] {
    QWidget* modal = QApplication::activeModalWidget();
    if (auto* box = qobject_cast<QMessageBox*>(modal)) {
      ++questions;
      EXPECT_TRUE(box->text().contains(QString::fromStdString(port(0).name())));
      if (auto* button = box->button(person.answer)) return button->click();
    }
    auto* dialog = qobject_cast<QFileDialog*>(modal);
    if (dialog && !person.path.isEmpty()) dialog->selectFile(person.path);
    if (auto* asking = qobject_cast<QDialog*>(modal)) person.path.isEmpty() ? asking->reject() : asking->accept();
  });
  attention.start(1);
  const auto closes = [&](QMessageBox::StandardButton answer, const std::string& path = {}) {
    person = {answer, QString::fromStdString(path)};
    window->show();
    window->actions().quitAction->trigger();
    return !window->isVisible();
  };
  EXPECT_TRUE(closes(QMessageBox::NoButton)) << "nothing has changed";
  EXPECT_EQ(questions, 0);
  setBlackOut(1);
  EXPECT_FALSE(closes(QMessageBox::Cancel));
  EXPECT_FALSE(closes(QMessageBox::Save)) << "without a file";
  EXPECT_FALSE(closes(QMessageBox::Save, at("nowhere/a.levels")));
  EXPECT_TRUE(closes(QMessageBox::Save, at("a.levels")));
  EXPECT_EQ(questions, 4);
  EXPECT_TRUE(closes(QMessageBox::NoButton)) << "saved";
  setBlackOut(0.5);
  EXPECT_TRUE(closes(QMessageBox::Discard));
  session->document().load(at("a.levels"), nullptr);
  EXPECT_EQ(dynamic_cast<VRTHistogram&>(*port(0).rawValue()).blackOutForChannel(0), 1);
}

TEST_F(EffectWindowTest, DroppedStatesAreLoadedAndOthersRefused) {
  openLevels();
  setBlackOut(1);
  session->document().save(port(0), at("white.levels"));
  setBlackOut(0);
  handleEvents();
  const auto drop = [&](const std::string& path) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent event({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.get(), &event);
    handleEvents();
  };
  drop(at("white.levels"));
  EXPECT_EQ(shown(), qRgb(255, 255, 255));
  EXPECT_FALSE(window->messages().isVisible());
  drop(at("in.png"));
  EXPECT_TRUE(window->messages().isVisible());
  EXPECT_TRUE(window->messages().text().contains("in.png"));
  EXPECT_EQ(shown(), qRgb(255, 255, 255));
}
