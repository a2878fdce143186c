// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/NumberField.h"

#include "Controls/VRTInteractions.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/QuartzComposer/QCPort.h"
#include "Tests/Inspect/InspectFixture.h"
#include "Tests/Support/EnglishTexts.h"

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QShortcut>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace {

using host::NumberField;

// A field on a number from 0 to 1 in a window, beside another thing that takes the keyboard. What is told is logged:
// "(" and ")" for the interaction, the values, and "s" for settled.
class NumberFieldTest : public testing::Test {
 protected:
  NumberFieldTest() {
    readEnglishTexts();
    QLocale::setDefault(QLocale::c());
    window.setLocale(QLocale::c());
    const auto listen = [this](const char* name, const char* told) {
      observations.push_back(NSNotificationCenter::defaultCenter().addObserver(
          name, &port, [this, told](const NSNotification&) { log += told; }));
    };
    listen(kVortoStartInteraction, "(");
    listen(kVortoEndInteraction, ")");
    auto* column = new QVBoxLayout(&window);
    column->addWidget(other = new QLineEdit);
    make({});
    window.resize(600, 100);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    other->setFocus();
  }
  void make(const NumberField::Numbers& numbers) {
    delete field;
    field = new NumberField(port, numbers,
                            {.changed =
                                 [this](double value) {
                                   log += " " + std::to_string(std::lround(value * 1000));
                                   field->setValue(value);
                                   if (onChange) onChange();
                                 },
                             .settled = [this] { log += "s"; },
                             .refusal = [](double value) { return value == 0.25 ? QString("taken") : QString(); }},
                            &window);
    field->setLabel("Label");
    field->setValue(0.5);
    field->setGeometry(20, 60, 120, 22);
    field->show();
  }
  void type(const QString& text) const {
    field->setFocus(Qt::TabFocusReason);
    field->line().selectAll();
    QTest::keyClicks(&field->line(), text);
  }
  void typeAndKeep(const QString& text) const {
    type(text);
    QTest::keyClick(&field->line(), Qt::Key_Return);
  }
  std::string takeLog() { return std::exchange(log, {}); }
  void turn(int angle, Qt::KeyboardModifiers modifiers = {}) const {
    QWheelEvent event({5, 5}, field->line().mapToGlobal(QPointF(5, 5)), {}, {0, angle}, {}, modifiers,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&field->line(), &event);
  }
  // A drag from a place of the field by steps.
  void drag(QPoint from, const std::vector<int>& steps, Qt::KeyboardModifiers modifiers = {}) {
    const QPoint start = pointer = field->mapTo(&window, from);
    QTest::mousePress(window.windowHandle(), Qt::LeftButton, modifiers, start);
    for (const int step : steps) {
      pointer = start + QPoint(step, 0);
      QTest::mouseEvent(QTest::MouseMove, window.windowHandle(), Qt::LeftButton, modifiers, pointer);
    }
  }
  void letGo() { QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, pointer); }

  QCNumberPort port{"number"};
  QWidget window;
  QLineEdit* other = nullptr;
  NumberField* field = nullptr;
  std::string log;
  QPoint pointer;
  std::function<void()> onChange;
  std::vector<NSNotificationCenter::Observation> observations;
};

TEST_F(NumberFieldTest, WhatIsTypedIsOneStepWithinTheRange) {
  const struct {
    const char* typed;
    double value;
    const char* log;
  } rows[] = {{"1/3", 1 / 3.0, "( 333s)"}, {"50%", 0.5, "( 500s)"}, {"0,75", 0.75, "( 750s)"},
              {"7", 1, "( 1000s)"},        {"-7", 0, "( 0s)"},      {"0", 0, ""}};
  for (const auto& [typed, value, told] : rows) {
    typeAndKeep(typed);
    EXPECT_EQ(field->value(), value) << typed;
    EXPECT_EQ(takeLog(), told) << typed;
    EXPECT_EQ(field->fault(), "");
  }
  field->setValue(1 / 3.0);
  EXPECT_EQ(field->text(), "0.3333");
  type("");
  QTest::keyClick(&field->line(), Qt::Key_Escape);
  QTest::keyClick(&field->line(), Qt::Key_Return);
  EXPECT_EQ(field->value(), 1 / 3.0) << "keeps what is not shown";
  type("0.6");
  other->setFocus(Qt::TabFocusReason);
  EXPECT_EQ(takeLog(), "( 600s)") << "going elsewhere keeps too";
}

TEST_F(NumberFieldTest, WhatCannotBeKeptSaysWhyAndKeepsTheOldValue) {
  const std::pair<const char*, const char*> rows[] = {{"1/0", "Division by zero"},
                                                      {"", "Type a number"},
                                                      {"2 * x", "A number was expected, not \u201cx\u201d"},
                                                      {"1,234", "\u201c1,234\u201d could mean two numbers"},
                                                      {"0.25", "taken"}};
  for (const auto& [typed, reason] : rows) {
    type(typed);
    if (!*typed) QTest::keyClick(&field->line(), Qt::Key_Backspace);
    QTest::keyClick(&field->line(), Qt::Key_Return);
    EXPECT_TRUE(field->fault().startsWith(reason)) << typed << ": " << field->fault().toStdString();
    EXPECT_TRUE(field->toolTip().contains(reason));
    EXPECT_EQ(field->text(), typed) << "to be mended";
    EXPECT_EQ(field->value(), 0.5);
    QTest::keyClick(&field->line(), Qt::Key_Escape);
    EXPECT_EQ(field->text(), "0.5");
    EXPECT_EQ(field->fault(), "");
  }
  type("1/");
  other->setFocus(Qt::TabFocusReason);
  EXPECT_EQ(field->text(), "0.5") << "going elsewhere leaves the old text";
  EXPECT_EQ(takeLog(), "");
}

TEST_F(NumberFieldTest, ArrowsAndWheelStep) {
  field->setFocus(Qt::TabFocusReason);
  QLineEdit* line = &field->line();
  QTest::keyPress(line, Qt::Key_Up);
  QTest::keyPress(line, Qt::Key_Up);
  QTest::keyRelease(line, Qt::Key_Up);
  EXPECT_EQ(takeLog(), "( 510 520s)") << "held keys are one";
  QTest::keyClick(line, Qt::Key_Down, Qt::ShiftModifier);
  QTest::keyClick(line, Qt::Key_Up, Qt::ControlModifier);
  EXPECT_EQ(takeLog(), "( 519s)( 619s)");
  EXPECT_EQ(field->text(), "0.619");
  for (int i = 0; i < 5; ++i) QTest::keyClick(line, Qt::Key_Up, Qt::ControlModifier);
  EXPECT_EQ(field->value(), 1);
  takeLog();

  turn(-120);
  turn(-120, Qt::ShiftModifier);
  EXPECT_EQ(takeLog(), "( 990 989");
  QTest::keyClick(line, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(takeLog(), "s)") << "a turn is over before it is undone";
  turn(-120);
  EXPECT_TRUE(QTest::qWaitFor([this] { return !field->isInteracting(); }, 5000));
  EXPECT_EQ(takeLog(), "( 979s)");
  other->setFocus();
  turn(-120);
  EXPECT_EQ(takeLog(), "") << "without the keyboard it scrolls";

  field->setFocus();
  QTest::keyPress(line, Qt::Key_Up);
  field->hide();
  EXPECT_EQ(takeLog(), "( 989");
  inspect_test::handleEvents();
  EXPECT_EQ(takeLog(), "s)") << "what is hidden ends, when others may be told";
}

// Windows have shortcuts without modifiers, for playing say.
TEST_F(NumberFieldTest, ItsKeysAreNotTheWindows) {
  int stolen = 0;
  std::vector<std::unique_ptr<QShortcut>> shortcuts;
  for (const int key :
       {Qt::Key_Left, Qt::Key_Up, Qt::Key_Return, Qt::Key_Escape, Qt::Key_1, Qt::Key_Space, Qt::Key_Home}) {
    shortcuts.push_back(std::make_unique<QShortcut>(QKeySequence(key), &window));
    QObject::connect(shortcuts.back().get(), &QShortcut::activated, &window, [&] { ++stolen; });
  }
  type(" 1/ 4");
  for (const int key : {Qt::Key_Home, Qt::Key_Left, Qt::Key_Escape, Qt::Key_Up, Qt::Key_Return}) {
    QTest::keyClick(&field->line(), static_cast<Qt::Key>(key));
  }
  EXPECT_EQ(field->value(), 0.51);
  EXPECT_EQ(stolen, 0);
  QTest::keyClick(&field->line(), Qt::Key_Escape);
  EXPECT_EQ(stolen, 1) << "with nothing to bring back it is the window's";
}

TEST_F(NumberFieldTest, DraggingScrubs) {
  const QPoint label(10, 11), number(100, 11);
  for (const QPoint& from : {label, number}) {
    field->setValue(0.5);
    drag(from, {2, 10, 20});
    letGo();
    EXPECT_EQ(takeLog(), "( 550 600s)");
    EXPECT_FALSE(field->line().hasFocus());
  }
  drag(label, {-20}, Qt::ShiftModifier);
  QTest::keyClick(&field->line(), Qt::Key_Escape);
  EXPECT_EQ(takeLog(), "( 590 600s)");
  letGo();
  EXPECT_FALSE(field->isInteracting());

  drag(label, {120, 100});
  letGo();
  EXPECT_EQ(takeLog(), "( 1000 900s)") << "back from beyond an end it moves at once";

  drag(number, {});
  letGo();
  EXPECT_TRUE(field->line().hasFocus()) << "a click is for typing";
  EXPECT_EQ(field->line().selectedText(), "0.9");
  EXPECT_EQ(takeLog(), "");
}

TEST_F(NumberFieldTest, ShowsNumbersShortly) {
  make({.minimum = -1e300, .maximum = 1e300, .step = 0.01, .decimals = 3});
  const std::pair<double, const char*> rows[] = {
      {0, "0"},           {-0.0, "0"},         {0.1, "0.1"},   {1.23456, "1.235"},
      {12.3456, "12.35"}, {1234.5678, "1235"}, {-2.5, "-2.5"}, {123456789, "123456789"},
      {1e12, "1e+12"}};
  for (const auto& [value, text] : rows) EXPECT_EQ(field->textOf(value), text) << value;
  make({.minimum = 0, .maximum = 10, .step = 1, .decimals = 0, .isWhole = true});
  field->setValue(3);
  typeAndKeep("10/4");
  EXPECT_EQ(field->value(), 3);
  QTest::keyClick(&field->line(), Qt::Key_Up, Qt::ShiftModifier);
  EXPECT_EQ(field->value(), 4);
}

TEST_F(NumberFieldTest, MayBeDestroyedByWhoeverIsTold) {
  onChange = [this] { delete std::exchange(field, nullptr); };
  for (int way = 0; way < 4; ++way) {
    make({});
    takeLog();
    switch (way) {
      case 0:
        typeAndKeep("0.1");
        break;
      case 1:
        field->setFocus(Qt::TabFocusReason);
        QTest::keyClick(&field->line(), Qt::Key_Up);
        break;
      case 2:
        field->setFocus(Qt::TabFocusReason);
        turn(120);
        break;
      default:
        drag({10, 11}, {20});
        letGo();
        break;
    }
    EXPECT_EQ(field, nullptr);
    EXPECT_EQ(log.front(), '(');
    EXPECT_EQ(log.back(), ')') << "every start has its end";
  }
}

}  // namespace
