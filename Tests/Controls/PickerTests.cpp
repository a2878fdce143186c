// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTColorPanel.h"
#include "Controls/VRTTransientColorPanel.h"
#include "Controls/VRTTransientColorPicker.h"
#include "Platform/TarnKit/NSTarnView.h"
#include "Tests/Support/EnglishTexts.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QTest>
#include <QWindow>
#include <memory>

namespace {

using Kind = VRTColorSwatch::Kind;

using Field = VRTColorField::Kind;
using Component = VRTColorComponent;

VRTPickedColor picked(double hue, double saturation, double value) {
  VRTPickedColor color;
  color.set(hue, saturation, value);
  return color;
}

TEST(PickedColor, ReachesEveryByteByNumbersAndDigitsAndKeepsTheRest) {
  VRTPickedColor color;
  color.setColor(NSColor::colorWithCalibratedRed(0.123456789, 2, -1, 1));
  color.setNumber(Component::Green, 30);
  EXPECT_EQ(color.color().redComponent(), 0.123456789) << "to the last digit";
  EXPECT_EQ(color.color().blueComponent(), -1);
  const Component components[] = {Component::Red, Component::Green, Component::Blue};
  for (int level = 0; level < 256; ++level) {
    const int levels[] = {level, 255 - level, level * 7 % 256};
    for (int i = 0; i < 3; ++i) color.setNumber(components[i], levels[i]);
    const QRgb expected = qRgb(levels[0], levels[1], levels[2]);
    EXPECT_EQ(VRTLevelsOfColor(color.color()), expected);
    const auto typed = VRTColorOfHex(" " + VRTHexOfColor(color.color()).toUpper() + " ");
    ASSERT_TRUE(typed);
    EXPECT_EQ(typed->redComponent(), color.color().redComponent());
    // Turned back by the place that it has.
    VRTPickedColor placed = picked(color.hue(), color.saturation(), color.value());
    EXPECT_EQ(VRTLevelsOfColor(placed.color()), expected);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(placed.number(components[i]), levels[i], 1e-9);
  }
  EXPECT_EQ(VRTLevelsOfColor(*VRTColorOfHex("#1e9")), qRgb(0x11, 0xee, 0x99));
  for (const char* text : {"", "#", "12", "1234", "12345", "1234567", "12345g", "-12345", "##123456", "１２３"}) {
    EXPECT_FALSE(VRTColorOfHex(QString::fromUtf8(text))) << text;
  }
}

TEST(PickedColor, AGrayKeepsTheHueAndBlackTheSaturation) {
  VRTPickedColor color = picked(0.6, 0.7, 0.8);
  const double nothing = std::nan("");
  for (const double value : {0.0, 1.0}) {
    color = picked(0.6, 0.7, 0.8);
    color.setColor(NSColor::colorWithCalibratedRed(value, value, value, 1));
    EXPECT_EQ(color.hue(), 0.6);
    EXPECT_EQ(color.saturation(), value > 0 ? 0 : 0.7);
  }
  color.set(nothing, 7, -7);
  EXPECT_EQ(VRTLevelsOfColor(color.color()), qRgb(0, 0, 0));
  color.setColor(NSColor::colorWithCalibratedRed(nothing, 1e300, 0, 1));
  EXPECT_EQ(color.number(Component::Hue), 120);
}

TEST(Swatch, PicksAndFindsTheEndsOfEveryRange) {
  const struct {
    Field field;
    QPointF place;
    VRTPickedColor color;
  } cases[] = {
      {Field::Square, {0, 0}, picked(0.3, 0, 1)},     {Field::Square, {255, 0}, picked(0.3, 1, 1)},
      {Field::Square, {255, 255}, picked(0.3, 1, 0)}, {Field::Square, {51, 204}, picked(0.3, 0.2, 0.2)},
      {Field::Hues, {8, 0}, picked(0, 0.4, 0.5)},     {Field::Hues, {8, 85}, picked(1.0 / 3, 0.4, 0.5)},
      {Field::Hues, {8, 255}, picked(1, 0.4, 0.5)},   {Field::Grays, {8, 0}, picked(0.3, 0, 1)},
      {Field::Grays, {8, 255}, picked(0.3, 0, 0)},    {Field::Ramp, {51, 16}, picked(0.3, 0, 0.2)},
      {Field::Ramp, {255, 16}, picked(0.3, 0, 1)},
  };
  for (const auto& [kind, place, color] : cases) {
    const VRTColorField field(kind);
    VRTPickedColor found = picked(0.3, 0.4, 0.5);
    field.pick(place, found);
    EXPECT_NEAR(found.hue(), color.hue(), 1e-12);
    EXPECT_NEAR(found.saturation(), color.saturation(), 1e-12);
    EXPECT_NEAR(found.value(), color.value(), 1e-12);
    EXPECT_LT((field.placeOf(found) - place).manhattanLength(), 1e-9);
    VRTPickedColor beyond = found;
    field.pick(place + (place - QPointF(127, 127)) * 1e6, beyond);
    field.step({0, 0}, found);
  }
}

// Every pixel of the device that is painted is the color that is picked there, at every ratio.
TEST(Swatch, ShowsTheTrueColors) {
  for (const double ratio : {1.0, 1.25, 1.5, 2.0}) {
    for (const Field kind : {Field::Square, Field::Grays, Field::Ramp, Field::Hues}) {
      VRTColorField field(kind);
      field.image(picked(0.1, 1, 1), ratio);
      const QImage& image = field.image(picked(0.7, 1, 1), ratio);
      ASSERT_EQ(image.size(), (QSizeF(field.size()) * ratio).toSize());
      for (int y = 0; y < image.height(); y += 5) {
        for (int x = 0; x < image.width(); x += 3) {
          VRTPickedColor color = picked(0.7, 1, 1);
          field.pick(QPointF(x / ratio, y / ratio), color);
          ASSERT_EQ(image.pixel(x, y), VRTLevelsOfColor(color.color())) << x << ", " << y << " at " << ratio;
        }
      }
    }
  }
}

// The picker opened from a view at the middle of the screen, and what it says.
struct Picker : testing::Test {
  void open(bool grayscale = false, std::optional<NSColor> oldColor = gray(0.5),
            QPoint position = QGuiApplication::primaryScreen()->availableGeometry().center(), int clicks = 1) {
    VRTTransientColorPicker::Options options;
    options.oldColor = oldColor;
    options.didStart = [this] { log += "start "; };
    options.didEnd = [this](bool taken) { log += taken ? "taken " : "cancelled "; };
    const auto action = [this](VRTTransientColorPicker& picker) {
      log += "color ";
      last = picker.color();
      if (const auto act = std::exchange(inAction, nullptr)) act();
    };
    const NSEvent event({5, 5}, 0, clicks, position);
    grayscale ? VRTTransientColorPicker::popupGrayscalePickerFrom(view.get(), event, action, options)
              : VRTTransientColorPicker::popupColorPickerFrom(view.get(), event, action, options);
    panel = VRTTransientColorPicker::panel();
  }
  ~Picker() override { view.reset(); }

  static NSColor gray(double value) { return NSColor::colorWithCalibratedRed(value, value, value, 1); }
  static QPoint place(int x, int y) { return VRTTransientColorPanel::swatchOrigin() + QPoint(x, y); }

  // By the keyboard, which clicks nothing.
  VRTColorPanel& openPanel(bool grayscale = false, std::optional<NSColor> oldColor = gray(0.5)) {
    open(grayscale, oldColor, QPoint(300, 60), 0);
    log.clear();
    return dynamic_cast<VRTColorPanel&>(*panel);
  }
  QAbstractButton* buttonOfPanel(const char* name) const {
    for (auto* each : panel->findChildren<QAbstractButton*>()) {
      if (each->accessibleName().startsWith(name)) return each;
    }
    return nullptr;
  }
  // Windows of dead owners close at once and go when their events are handled.
  bool isGone() const {
    const bool isClosed = panel.isNull() || !panel->isVisible();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return isClosed && panel.isNull();
  }

  void move(QPoint position, Qt::MouseButtons buttons = Qt::NoButton) const {
    QMouseEvent event(QEvent::MouseMove, position, position, panel->mapToGlobal(position), Qt::NoButton, buttons, {});
    QCoreApplication::sendEvent(panel, &event);
  }

  std::unique_ptr<NSTarnView> view = std::make_unique<NSTarnView>(NSMakeRect(0, 0, 50, 50));
  QPointer<QWidget> panel;
  std::string log;
  std::optional<NSColor> last;
  std::function<void()> inAction;
};

TEST_F(Picker, OpensWithTheOldColorUnderThePointerAndStaysOnTheScreen) {
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  const QPoint pointer = screen.center() - QPoint(90, 0);
  open(false, gray(0.5), pointer);
  ASSERT_TRUE(panel);
  EXPECT_LE((panel->mapFromGlobal(pointer) - place(24, 127)).manhattanLength(), 2);
  EXPECT_EQ(log, "start ");
  for (const QPoint corner : {screen.topLeft(), screen.topRight(), screen.bottomLeft(), screen.bottomRight()}) {
    open(true, std::nullopt, corner);
    EXPECT_TRUE(screen.contains(panel->geometry()));
    open(false, std::nullopt, corner, 2);
    EXPECT_TRUE(screen.contains(panel->geometry()));
    EXPECT_FALSE(panel->geometry().contains(corner)) << "beside what it edits";
  }
}

// What people do in an open picker, what it says then, and which gray it reported last.
TEST_F(Picker, ReportsWhatPeopleDo) {
  const auto press = [this](QPoint at) { QTest::mousePress(panel, Qt::LeftButton, {}, at); };
  const auto release = [this](QPoint at, Qt::MouseButton b = Qt::LeftButton) { QTest::mouseRelease(panel, b, {}, at); };
  const auto key = [this](int code, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(panel, static_cast<Qt::Key>(code), modifiers);
  };
  const QPoint far(-90, 5);
  const auto middle = [this] { return panel->rect().center(); };
  const struct {
    const char* name;
    std::optional<double> old;
    std::function<void()> act;
    std::string told;
    std::optional<double> red = std::nullopt;
  } cases[] = {
      {"hover", 0.5, [&] { move(place(51, 10)); }, "color ", 51 / 255.0},
      {"hover in the margin", 0.5, [&] { move(QPoint(0, 3)); }, "color ", 0},
      {"hover outside", 0.5, [&] { move(QPoint(-30, 3)); }, ""},
      {"press", 0.5, [&] { press(place(102, 10)); }, "color ", 102 / 255.0},
      {"click", 0.5, [&] { press(place(102, 10)), release(place(255, 10)); }, "color color taken ", 1},
      {"release of the press that opened it", 0.5, [&] { release(middle(), Qt::RightButton); }, ""},
      {"release after a trembling hand", 0.5,
       [&] { move(middle() + QPoint(1, 0), Qt::LeftButton), release(middle() + QPoint(1, 0)); }, "color "},
      {"drag", 0.5, [&] { move(place(51, 10), Qt::LeftButton), release(place(51, 10)); }, "color color taken ", 0.2},
      {"arrows", 0.2, [&] { key(Qt::Key_Right), key(Qt::Key_Left, Qt::ShiftModifier), key(Qt::Key_Return); },
       "color color taken ", 42 / 255.0},
      {"enter alone keeps what was there", 0.2, [&] { key(Qt::Key_Enter); }, "taken "},
      {"enter alone takes what is shown", std::nullopt, [&] { key(Qt::Key_Enter); }, "color taken "},
      {"Escape", 0.5, [&] { move(place(30, 20)), key(Qt::Key_Escape); }, "color color cancelled ", 0.5},
      {"Escape at once", 0.5, [&] { key(Qt::Key_Escape); }, "cancelled "},
      {"Escape without an old color", std::nullopt, [&] { move(place(51, 20)), key(Qt::Key_Escape); },
       "color cancelled ", 0.2},
      {"click outside", 0.5, [&] { move(place(30, 20)), press(QPoint(-20, -20)); }, "color color cancelled ", 0.5},
      {"release outside", 0.5, [&] { move(place(30, 20)), move(far, Qt::LeftButton), release(far); },
       "color color cancelled ", 0.5},
      {"closed from outside", 0.5, [&] { move(place(30, 20)), panel->hide(); }, "color color cancelled ", 0.5},
      {"cancel", 0.5, [&] { move(place(30, 20)), VRTTransientColorPicker::current()->cancel(); },
       "color color cancelled ", 0.5},
      {"another picker", 0.5,
       [&] { move(place(30, 20)), VRTTransientColorPicker::popupColorPickerFrom(view.get(), NSEvent(), {}); },
       "color color cancelled ", 0.5},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    if (auto* open = VRTTransientColorPicker::current()) open->cancel();
    log.clear();
    last.reset();
    open(true, each.old ? std::optional(gray(*each.old)) : std::nullopt);
    const QPointer<QWidget> opened = panel;
    each.act();
    QCoreApplication::processEvents();
    EXPECT_EQ(log, "start " + each.told);
    if (each.red) {
      ASSERT_TRUE(last);
      EXPECT_NEAR(last->redComponent(), *each.red, 1e-6);
      EXPECT_EQ(last->redComponent(), last->blueComponent());
    }
    const bool ended = each.told.ends_with("taken ") || each.told.ends_with("cancelled ");
    EXPECT_EQ(opened && opened->isVisible(), !ended);
  }
}

TEST_F(Picker, ADeadOwnerClosesItAndNobodyIsCalled) {
  open();
  move(place(30, 20));
  log.clear();
  view.reset();
  EXPECT_TRUE(isGone());
  EXPECT_EQ(VRTTransientColorPicker::current(), nullptr);
  EXPECT_EQ(log, "");
  VRTTransientColorPicker::popupColorPickerFrom(nullptr, NSEvent(), {});
  EXPECT_EQ(VRTTransientColorPicker::current(), nullptr);
}

// By a move, a press, a key, and by the old color that Escape puts back.
TEST_F(Picker, TheActionMayDeleteTheOwnerWhileItMovesOrEnds) {
  const std::function<void()> steps[] = {
      [this] { move(place(30, 20)); },
      [this] { QTest::mousePress(panel, Qt::LeftButton, {}, place(30, 20)); },
      [this] { QTest::keyClick(panel, Qt::Key_Down); },
      [this] { QTest::keyClick(panel, Qt::Key_Escape); },
  };
  for (const auto& step : steps) {
    view = std::make_unique<NSTarnView>(NSMakeRect(0, 0, 50, 50));
    open();
    if (&step == &steps[3]) move(place(30, 20));
    log.clear();
    inAction = [this] { view.reset(); };
    step();
    EXPECT_EQ(log, "color ");
    EXPECT_TRUE(isGone());
  }
}

TEST_F(Picker, TheActionMayOpenAnotherPickerOrCancelThisOne) {
  for (const bool another : {false, true}) {
    log.clear();
    open();
    inAction = [this, another] { another ? open(true) : VRTTransientColorPicker::current()->cancel(); };
    move(place(30, 20));
    EXPECT_EQ(log, another ? "start color color cancelled start " : "start color color cancelled ");
    EXPECT_EQ(VRTTransientColorPicker::current() != nullptr, another);
  }
}

struct Owner : NSTarnView {
  using NSTarnView::NSTarnView;
  void mouseDown(const NSEvent& event) override {
    VRTTransientColorPicker::popupColorPickerFrom(this, event,
                                                  [this](VRTTransientColorPicker& picker) { color = picker.color(); });
  }
  void rightMouseDown(const NSEvent& event) override {
    VRTTransientColorPicker::Options options;
    options.didEnd = [this](bool isTaken) { taken = isTaken; };
    VRTTransientColorPicker::popupGrayscalePickerFrom(
        this, event, [this](VRTTransientColorPicker& picker) { color = picker.color(); }, options);
  }
  void mouseUp(const NSEvent&) override { ++ups; }
  std::optional<bool> taken;
  std::optional<NSColor> color;
  int ups = 0;
};

// Press in the view, drag and let go: as the window system delivers it, which knows nothing of pop-ups.
TEST_F(Picker, OnePressDragAndReleasePicks) {
  Owner owner(NSMakeRect(100, 300, 500, 300));
  owner.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&owner));
  QWindow* window = owner.windowHandle();
  QTest::mousePress(window, Qt::RightButton, {}, QPoint(100, 50));
  panel = VRTTransientColorPicker::panel();
  ASSERT_TRUE(panel);
  const QPoint start = panel->mapFromGlobal(owner.mapToGlobal(QPoint(100, 50)));
  QTest::mouseMove(window, QPoint(151, 50));
  ASSERT_TRUE(owner.color);
  EXPECT_FALSE(owner.taken);
  QTest::mouseRelease(window, Qt::RightButton, {}, QPoint(151, 50));
  EXPECT_EQ(owner.taken, true);
  const double expected = (start.x() + 51 - VRTTransientColorPanel::swatchOrigin().x()) / 255.0;
  EXPECT_NEAR(owner.color->redComponent(), expected, 0.01);

  // Any color at all: past its hue into the square.
  QTest::mousePress(window, Qt::LeftButton, {}, QPoint(250, 150));
  panel = VRTTransientColorPicker::panel();
  const auto onWindow = [&](QPoint at) { return owner.mapFromGlobal(panel->mapToGlobal(place(at.x(), at.y()))); };
  for (const QPoint at : {QPoint(290, 170), QPoint(24 + 102, 51)}) QTest::mouseMove(window, onWindow(at));
  EXPECT_EQ(VRTLevelsOfColor(*owner.color), qRgb(122, 122, 204)) << "two thirds of a turn, 40 % and 80 %";
  QTest::mouseRelease(window, Qt::LeftButton, {}, onWindow(QPoint(24 + 102, 51)));
  EXPECT_EQ(owner.ups, 1) << "the picker's window gets the release, and the view still hears of it";
  EXPECT_EQ(VRTTransientColorPicker::current(), nullptr);
}

// The panel.

TEST_F(Picker, ThePanelReachesEveryColorByTyping) {
  VRTColorPanel& entries = openPanel();
  const auto type = [&](Component component, const char* text) {
    QDoubleSpinBox& box = entries.numberEntry(component).box();
    box.setFocus();
    box.selectAll();
    QTest::keyClicks(&box, text);
    EXPECT_EQ(entries.focusWidget(), &box);
  };
  type(Component::Red, "17");
  type(Component::Green, "3");
  type(Component::Blue, "254");
  EXPECT_EQ(VRTLevelsOfColor(*last), qRgb(17, 3, 254));
  EXPECT_EQ(last->blueComponent(), 254 / 255.0);
  QLineEdit* hex = nullptr;
  for (QLineEdit* line : panel->findChildren<QLineEdit*>()) {
    if (!qobject_cast<QAbstractSpinBox*>(line->parentWidget())) hex = line;
  }
  ASSERT_TRUE(hex);
  EXPECT_EQ(hex->text(), "1103fe");
  hex->setFocus();
  hex->selectAll();
  log.clear();
  QTest::keyClicks(hex, "#80C0fz");
  EXPECT_EQ(log, "") << "not a color yet";
  for (const Qt::Key key : {Qt::Key_Backspace, Qt::Key_F}) QTest::keyClick(hex, key);
  EXPECT_EQ(VRTLevelsOfColor(*last), qRgb(0x80, 0xc0, 0xff));
  EXPECT_EQ(entries.numberEntry(Component::Green).box().value(), 192);
  hex->selectAll();
  QTest::keyClicks(hex, "1e9");
  entries.numberEntry(Component::Hue).box().setFocus();
  EXPECT_EQ(VRTLevelsOfColor(*last), qRgb(0x11, 0xee, 0x99)) << "three digits, once they are done";
  type(Component::Hue, "120");
  type(Component::Saturation, "100");
  type(Component::Value, "100");
  EXPECT_EQ(VRTLevelsOfColor(*last), qRgb(0, 255, 0));
  QTest::keyClick(entries.focusWidget(), Qt::Key_Return);
  EXPECT_TRUE(log.ends_with("taken "));

  openPanel(true);
  QDoubleSpinBox& level = dynamic_cast<VRTColorPanel&>(*panel).numberEntry(Component::Gray).box();
  level.setValue(51);
  EXPECT_EQ(last->greenComponent(), 0.2);
  // The label scrubs.
  QWidget* label = level.parentWidget();
  QTest::mousePress(label, Qt::LeftButton, {}, QPoint(3, 8));
  QMouseEvent scrub(QEvent::MouseMove, QPointF(13, 8), label->mapToGlobal(QPointF(13, 8)), Qt::NoButton, Qt::LeftButton,
                    {});
  QCoreApplication::sendEvent(label, &scrub);
  QTest::mouseRelease(label, Qt::LeftButton, {}, QPoint(13, 8));
  EXPECT_EQ(VRTLevelsOfColor(*last), qRgb(61, 61, 61));
}

// What people do in an open panel, and what it says then.
TEST_F(Picker, ThePanelReportsWhatPeopleDo) {
  const auto fieldOf = [this](Field kind) { return &dynamic_cast<VRTColorPanel&>(*panel).fieldView(kind); };
  const auto at = [](int x, int y) { return QPoint(x, y) + QPoint(4, 4); };
  const auto key = [this](Qt::Key code) { QTest::keyClick(panel->focusWidget(), code); };
  const auto drag = [&](Field kind, QPoint to) {
    QWidget* field = fieldOf(kind);
    QTest::mousePress(field, Qt::LeftButton, {}, at(10, 10));
    QMouseEvent move(QEvent::MouseMove, to, field->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(field, &move);
    QTest::mouseRelease(field, Qt::LeftButton, {}, to);
  };
  const auto outside = [this] { QTest::mousePress(panel, Qt::LeftButton, {}, QPoint(-20, 5)); };
  const struct {
    const char* name;
    std::function<void()> act;
    std::string told;
    std::optional<QRgb> color = std::nullopt;
  } cases[] = {
      {"the release of the click that opened it",
       [&] {
         QTest::mouseRelease(panel, Qt::LeftButton, {}, {9, 9});
       },
       ""},
      {"hover",
       [&] {
         move({100, 100});
       },
       ""},
      {"drag in the square", [&] { drag(Field::Square, at(255, 51)); }, "color color ", qRgb(204, 0, 0)},
      {"drag beyond it", [&] { drag(Field::Square, at(900, -90)); }, "color color ", qRgb(255, 0, 0)},
      {"a gray", [&] { drag(Field::Grays, at(9, 102)); }, "color color ", qRgb(153, 153, 153)},
      {"the hue of a gray", [&] { drag(Field::Hues, at(9, 85)); }, "color color ", qRgb(128, 128, 128)},
      {"and its square", [&] { drag(Field::Hues, at(9, 85)), drag(Field::Square, at(255, 0)); },
       "color color color color ", qRgb(0, 255, 0)},
      {"arrows", [&] { key(Qt::Key_Up), key(Qt::Key_Return); }, "color taken ", qRgb(129, 129, 129)},
      {"the next field", [&] { key(Qt::Key_Tab), key(Qt::Key_Home), key(Qt::Key_Down); }, "color ",
       qRgb(127, 127, 127)},
      {"Enter alone", [&] { key(Qt::Key_Enter); }, "taken "},
      {"a click outside", [&] { drag(Field::Square, at(0, 0)), outside(); }, "color color taken ", qRgb(255, 255, 255)},
      {"closed from outside", [&] { drag(Field::Square, at(0, 0)), panel->hide(), QCoreApplication::processEvents(); },
       "color color taken ", qRgb(255, 255, 255)},
      {"the old color", [&] { drag(Field::Square, at(255, 0)), buttonOfPanel("Back")->click(); }, "color color color ",
       qRgb(128, 128, 128)},
      {"Escape", [&] { drag(Field::Square, at(255, 0)), key(Qt::Key_Escape); }, "color color color cancelled ",
       qRgb(128, 128, 128)},
      {"the color taken last", [&] { buttonOfPanel("Recent")->click(); }, "color ", qRgb(255, 255, 255)},
  };
  readEnglishTexts();
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    last.reset();
    openPanel();
    const QPointer<QWidget> opened = panel;
    each.act();
    EXPECT_EQ(log, each.told);
    if (each.color) {
      ASSERT_TRUE(last);
      EXPECT_EQ(VRTLevelsOfColor(*last), *each.color);
    }
    const bool ended = each.told.ends_with("taken ") || each.told.ends_with("cancelled ");
    EXPECT_EQ(opened && opened->isVisible(), !ended);
  }
}

TEST_F(Picker, RecentColorsAreTheLastElevenEachOnce) {
  for (int level = 0; level < 14; ++level) {
    openPanel().numberEntry(Component::Red).box().setValue(level == 13 ? 5 : level);
    QTest::keyClick(panel, Qt::Key_Return);
  }
  const std::vector<VRTColorButton*>& recent = openPanel().recentButtons();
  const int expected[] = {5, 12, 11, 10, 9, 8, 7, 6, 4, 3, 2};
  ASSERT_EQ(recent.size(), 11u);
  for (std::size_t i = 0; i < recent.size(); ++i) EXPECT_EQ(qRed(VRTLevelsOfColor(*recent[i]->color())), expected[i]);
}

// The eyedropper takes the device pixel under the pointer, of any window of the program at least.
TEST_F(Picker, TheEyedropperTakesWhatIsOnTheScreen) {
  struct Picture : QWidget {
    void paintEvent(QPaintEvent*) override {
      QPainter painter(this);
      painter.fillRect(rect(), QColor(10, 20, 30));
      painter.fillRect(QRect(20, 20, 2, 2), QColor(1, 254, 77));
    }
  } picture;
  picture.setGeometry(20, 400, 100, 100);
  picture.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&picture));
  const auto point = [&](QEvent::Type type, Qt::MouseButton which, QPoint at) {
    QMouseEvent event(type, at, picture.mapToGlobal(at), which, which, {});
    QCoreApplication::sendEvent(panel, &event);
  };
  const auto start = [&] {
    openPanel();
    buttonOfPanel("Take")->click();
    point(QEvent::MouseMove, Qt::NoButton, {21, 21});
    EXPECT_EQ(log, "") << "only looking";
  };
  start();
  point(QEvent::MouseButtonPress, Qt::LeftButton, {21, 21});
  point(QEvent::MouseButtonRelease, Qt::LeftButton, {21, 21});
  EXPECT_EQ(log, "color ");
  EXPECT_EQ(VRTLevelsOfColor(*last), qRgb(1, 254, 77));
  EXPECT_TRUE(panel->isVisible());
  start();
  point(QEvent::MouseButtonPress, Qt::RightButton, {21, 21});
  start();
  QTest::keyClick(panel, Qt::Key_Escape);
  EXPECT_EQ(log, "");
  EXPECT_TRUE(panel->isVisible()) << "Escape ended the look, not the pick";
  start();
  view.reset();
  EXPECT_TRUE(isGone()) << "and the mouse is everybody's again";
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

}  // namespace
