// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/EffectWindow.h"

#include "Channels/VRTChannelGradient.h"
#include "Controls/VRTTransientColorPicker.h"
#include "Editors/VRTEditors.h"
#include "Host/Files/PictureReading.h"
#include "Host/Inspect/ActivityPanel.h"
#include "Host/Inspect/DocumentActions.h"
#include "Host/Inspect/EditorSlot.h"
#include "Host/Inspect/InspectorApplication.h"
#include "Host/Inspect/InspectorColumn.h"
#include "Host/Inspect/MessageBar.h"
#include "Host/Inspect/ParameterSection.h"
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
#include <QDropEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSlider>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

using inspect_test::handleEvents;
using inspect_test::optionsFor;
using inspect_test::writeFlatPicture;

constexpr int kPatience = 60000;

class EffectWindowTest : public testing::Test {
 protected:
  EffectWindowTest() {
    readEnglishTexts();
    inspect_test::useEffects();
    VRTStartEditors();
  }
  void openLevels() {
    writeFlatPicture(at("in.png"), 0);
    open(optionsFor("Levels", {at("in.png")}));
  }
  void open(const host::InspectOptions& options) {
    window.reset();
    window = std::make_unique<host::EffectWindow>(options, inspector);
    window->show();
    settle();
  }
  void settle() {
    handleEvents();
    EXPECT_TRUE(window->waitForPicture(kPatience));
  }
  QCPort& port(std::size_t index) { return *window->session().document().parameters().at(index); }
  std::string at(const std::string& name) const { return folder.path() + "/" + name; }
  QRgb shown() {
    settle();
    const host::PreviewPictureRef picture = window->viewer().picture();
    if (!picture || !picture->result || window->failure()) return qRgba(1, 2, 3, 4);
    const std::uint8_t* pixel = picture->result->data;
    return qRgb(pixel[0], pixel[1], pixel[2]);
  }
  // As the levels editor changes them: in place, all colors darker or brighter.
  void setBlackOut(double black) {
    port(0).willChangeValue();
    dynamic_cast<VRTHistogram&>(*port(0).rawValue()).setBlackOut(black, 0);
    port(0).didChangeValue();
  }
  void drop(const QStringList& names) {
    QMimeData data;
    QList<QUrl> urls;
    for (const QString& name : names) urls.append(QUrl::fromLocalFile(QString::fromStdString(at(name.toStdString()))));
    data.setUrls(urls);
    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent event({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.get(), &event);
  }
  template <class Widget>
  Widget* editorOf(const QString& name) {
    for (auto* widget : window->findChildren<Widget*>()) {
      if (widget->accessibleName() == name) return widget;
    }
    return nullptr;
  }

  TemporaryFolder folder;
  host::InspectorApplication inspector{"dark", false};
  std::unique_ptr<host::EffectWindow> window;
};

}  // namespace

TEST_F(EffectWindowTest, UndoRedoAndResetRenderToo) {
  openLevels();
  const auto& actions = window->actions();
  EXPECT_FALSE(actions.undoAction->isEnabled());
  setBlackOut(1);
  EXPECT_EQ(shown(), qRgb(255, 255, 255));
  const std::pair<QAction*, int> steps[] = {
      {actions.undoAction, 0}, {actions.redoAction, 255}, {actions.resetAction, 0}, {actions.undoAction, 255}};
  for (const auto& [action, gray] : steps) {
    action->trigger();
    EXPECT_EQ(shown(), qRgb(gray, gray, gray)) << action->text().toStdString();
  }
}

TEST_F(EffectWindowTest, PlaysASequenceAndGoesOnWithoutAFrame) {
  for (int frame = 3; frame <= 6; ++frame) {
    writeFlatPicture(at("in." + std::to_string(frame) + ".png"), static_cast<std::uint8_t>(frame * 10));
  }
  std::ofstream(at("in.7.png")) << "broken";
  host::InspectOptions options = optionsFor("Levels", {at("in.%d.png")});
  options.rate = 1000;
  open(options);
  EXPECT_EQ(shown(), qRgb(30, 30, 30));
  host::Player& player = window->player();
  EXPECT_EQ(player.times().count(), 5u);
  player.setOutPoint(3);
  player.goTo(2);
  EXPECT_EQ(shown(), qRgb(50, 50, 50));

  QTest::keyClick(window.get(), Qt::Key_Space);
  EXPECT_TRUE(player.isPlaying());
  EXPECT_TRUE(QTest::qWaitFor([&] { return player.shownCount() >= 9; }, kPatience));
  QTest::keyClick(window.get(), Qt::Key_Space);
  EXPECT_FALSE(player.isPlaying());
  auto* title = window->column().section(port(0))->findChild<QAbstractButton*>();
  for (const bool shown : {false, true}) {
    title->setFocus();
    QTest::keyClick(title, Qt::Key_Space);
    EXPECT_EQ(window->column().section(port(0))->slot().isVisible(), shown) << "a button presses itself";
    EXPECT_FALSE(player.isPlaying());
  }

  player.goTo(4);
  EXPECT_TRUE(QTest::qWaitFor([&] { return window->activity().failures() > 0; }, kPatience));
  EXPECT_EQ(window->viewer().notice(), host::Viewer::NoticeKind::Failed);
  player.goTo(0);
  setBlackOut(1);
  EXPECT_EQ(shown(), qRgb(255, 255, 255));
  EXPECT_EQ(window->viewer().notice(), host::Viewer::NoticeKind::None);
}

TEST_F(EffectWindowTest, WhatDoesNotFitIsRefusedAndWhatIsMissingIsWaitedFor) {
  writeFlatPicture(at("a.png"), 0);
  writeFlatPicture(at("b.png"), 200);
  EXPECT_THROW(host::EffectWindow(optionsFor("Levls", {at("a.png")}), inspector), host::Failure);
  open(optionsFor("Levels", {at("none.png")}));
  ASSERT_TRUE(window->failure());
  EXPECT_NE(window->failure()->text.find("none.png"), std::string::npos);
  EXPECT_EQ(window->activity().failures(), 1);

  host::InspectOptions options = optionsFor("Dissolve", {at("a.png")});
  options.time = 0.25;
  open(options);
  EXPECT_EQ(window->viewer().notice(), host::Viewer::NoticeKind::Hint);
  window->take({QString::fromStdString(at("b.png"))}, 1);
  EXPECT_EQ(shown(), qRgb(50, 50, 50));
  window->player().goTo(window->player().times().last());
  EXPECT_EQ(shown(), qRgb(200, 200, 200));
}

TEST_F(EffectWindowTest, AnotherEffectKeepsInputsAndWhatItCallsTheSame) {
  writeFlatPicture(at("a.png"), 100);
  writeFlatPicture(at("b.png"), 200);
  open(optionsFor("Dissolve", {at("a.png"), at("b.png")}));
  window->player().goTo(500);
  EXPECT_EQ(shown(), qRgb(150, 150, 150));
  window->chooseEffect("Levels");
  EXPECT_EQ(shown(), qRgb(100, 100, 100));
  setBlackOut(1);
  EXPECT_EQ(shown(), qRgb(255, 255, 255));
  window->chooseEffect("Dissolve");
  settle();
  window->player().goTo(1000);
  EXPECT_EQ(shown(), qRgb(200, 200, 200)) << "the second input was kept";
  window->chooseEffect("Levels");
  EXPECT_EQ(shown(), qRgb(255, 255, 255)) << "as it was left";
  window->chooseEffect("No Such Effect");
  EXPECT_EQ(window->session().name(), "Levels");
  EXPECT_TRUE(window->messages().isVisible());
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
  auto* cell = editorOf<QLineEdit>("Cell Size");
  auto* depth = editorOf<QComboBox>("Depth");
  ASSERT_TRUE(cell && depth);
  const auto indexPort = [&](const std::string& key) -> QCIndexPort& {
    const auto& all = window->session().document().parameters();
    return dynamic_cast<QCIndexPort&>(**std::ranges::find(all, key, &QCPort::key));
  };
  auto& size = indexPort("inputCellSize");
  EXPECT_EQ(cell->text(), "8");
  size.setIndexValue(12);
  EXPECT_EQ(cell->text(), "12");
  for (const auto& [typed, number] : {std::pair{"5000", 4096u}, {"60 / 3", 20u}}) {
    cell->selectAll();
    QTest::keyClicks(cell, typed);
    QTest::keyClick(cell, Qt::Key_Return);
    EXPECT_EQ(size.indexValue(), number);
  }
  ASSERT_EQ(depth->count(), 3);
  depth->setFocus();
  QTest::keyClick(depth, Qt::Key_Down);
  EXPECT_EQ(indexPort("inputDepth").indexValue(), 1u);
  settle();
  EXPECT_EQ(window->viewer().picture()->result->bitsPerChannel, 16u);

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
  window->session().document().forgetHistory();
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
  window->session().document().load(at("a.levels"), nullptr);
  EXPECT_EQ(dynamic_cast<VRTHistogram&>(*port(0).rawValue()).blackOutForChannel(0), 1);
}

TEST_F(EffectWindowTest, DroppedFilesGoWhereTheyBelong) {
  openLevels();
  setBlackOut(1);
  window->session().document().save(port(0), at("white.levels"));
  setBlackOut(0);
  EXPECT_EQ(shown(), qRgb(0, 0, 0));
  drop({"white.levels"});
  EXPECT_EQ(shown(), qRgb(255, 255, 255));
  EXPECT_FALSE(window->messages().isVisible());
  setBlackOut(0);
  writeFlatPicture(at("gray.png"), 77);
  drop({"gray.png"});
  EXPECT_EQ(shown(), qRgb(77, 77, 77));
  EXPECT_TRUE(window->windowTitle().contains("gray.png"));
  drop({"gray.png", "in.png"});
  EXPECT_TRUE(window->messages().text().contains("Levels")) << "it takes one";
  std::ofstream(at("broken.levels")) << "nothing";
  drop({"broken.levels"});
  EXPECT_TRUE(window->messages().text().contains("broken.levels"));
  EXPECT_EQ(shown(), qRgb(77, 77, 77));
}

// The file is that which vorto render writes: its depth and what it says come from the input.
TEST_F(EffectWindowTest, SavedPicturesAndExportsAreRendersOfTheirOwn) {
  const auto bitmap = host::newBitmap(5, 4, VortoPixelFormat::RGBA16, "picture");
  for (std::size_t i = 0; i < std::size_t{5} * 4 * 4; ++i) {
    const std::uint16_t value = i % 4 == 3 ? 65535 : static_cast<std::uint16_t>(i * 777);
    std::memcpy(bitmap->data + i * 2, &value, 2);
  }
  for (int frame = 1; frame <= 3; ++frame) {
    host::writePicture(at("in." + std::to_string(frame) + ".tif"),
                       {bitmap, host::Depth::Bits16, host::Channels::RGB, {}});
  }
  open(optionsFor("Levels", {at("in.%d.tif")}));
  setBlackOut(0.25);
  window->player().goTo(1);
  settle();
  window->saveFrame(QString::fromStdString(at("saved.tif")));
  EXPECT_TRUE(QTest::qWaitFor([&] { return window->activity().runningJobs() == 0; }, kPatience));
  EXPECT_EQ(window->activity().failures(), 0) << window->activity().summary().toStdString();
  const host::BitmapRef saved = host::readImage(at("saved.tif"));
  const host::BitmapRef shownNow = window->viewer().picture()->result;
  ASSERT_EQ(saved->formatCode, shownNow->formatCode);
  EXPECT_EQ(std::memcmp(saved->data, shownNow->data, std::size_t{5} * 4 * 8), 0);

  // Closing in the middle of an export ends it, and leaves nothing.
  auto* closing = window.release();
  closing->setAttribute(Qt::WA_DeleteOnClose);
  const QPointer<host::EffectWindow> alive(closing);
  closing->startJob(QString::fromStdString(at("long.mkv")), {"--when-short", "loop", "--frames", "1-50000"});
  QTimer attention;
  attention.callOnTimeout([] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    for (QAbstractButton* button : box ? box->buttons() : QList<QAbstractButton*>()) {
      if (box->buttonRole(button) == QMessageBox::DestructiveRole) button->click();
    }
  });
  attention.start(1);
  closing->close();
  EXPECT_TRUE(QTest::qWaitFor([&] { return !alive; }, kPatience));
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    EXPECT_EQ(entry.path().string().find("long"), std::string::npos) << entry.path();
  }
}
