// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTColorSwatch.h"
#include "Controls/VRTTransientColorPanel.h"
#include "Controls/VRTTransientColorPicker.h"
#include "Platform/TarnKit/NSTarnView.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMouseEvent>
#include <QPointer>
#include <QScreen>
#include <QTest>
#include <QWindow>
#include <memory>

namespace {

using Kind = VRTColorSwatch::Kind;

TEST(Swatch, ShowsTheEndsOfEveryRange) {
  const VRTColorSwatch colors(Kind::color);
  const double bottom = colors.size().height() - 1;
  const double field = 16;
  const double turn = colors.size().width() - field;
  const std::pair<QPointF, QColor> cases[] = {
      {{0, 0}, Qt::white},
      {{15, bottom}, Qt::black},
      {{0, bottom / 2}, QColor::fromRgbF(0.5F, 0.5F, 0.5F)},
      {{field, 0}, Qt::white},
      {{field, bottom / 2}, QColor(255, 0, 0)},
      {{field + turn / 3, bottom / 2}, QColor(0, 255, 0)},
      {{field + turn / 2, bottom / 2}, QColor(0, 255, 255)},
      {{field + turn * 2 / 3, bottom / 2}, QColor(0, 0, 255)},
      {{field + turn / 3, bottom / 4}, QColor::fromRgbF(0.5F, 1, 0.5F)},
      {{field + turn / 3, bottom * 3 / 4}, QColor::fromRgbF(0, 0.5F, 0)},
      {{1e9, 1e9}, Qt::black},
      {{-5, -5}, Qt::white},
  };
  for (const auto& [place, color] : cases) {
    EXPECT_EQ(colors.colorAt(place).toQColor().rgb(), color.rgb()) << place.x() << ' ' << place.y();
  }
  const VRTColorSwatch grays(Kind::grayscale);
  EXPECT_EQ(grays.colorAt({0, 9}).redComponent(), 0);
  EXPECT_EQ(grays.colorAt({grays.size().width() - 1.0, 0}).redComponent(), 1);
  EXPECT_EQ(grays.colorAt({51, 31}).redComponent(), 0.2);
}

TEST(Swatch, FindsThePlaceOfItsOwnColors) {
  for (const Kind kind : {Kind::color, Kind::grayscale}) {
    const VRTColorSwatch swatch(kind);
    for (int y = 1; y < swatch.size().height() - 1; y += 7) {
      for (int x = 0; x < swatch.size().width(); x += 5) {
        const NSColor color = swatch.colorAt(QPointF(x, y));
        const QColor found = swatch.colorAt(swatch.placeOf(color)).toQColor();
        EXPECT_NEAR(found.redF(), color.redComponent(), 0.01) << x << ", " << y;
        EXPECT_NEAR(found.greenF(), color.greenComponent(), 0.01) << x << ", " << y;
        EXPECT_NEAR(found.blueF(), color.blueComponent(), 0.01) << x << ", " << y;
      }
    }
  }
}

// The picker opened from a view at the middle of the screen, and what it says.
struct Picker : testing::Test {
  void open(bool grayscale = false, std::optional<NSColor> oldColor = gray(0.5),
            QPoint position = QGuiApplication::primaryScreen()->availableGeometry().center()) {
    VRTTransientColorPicker::Options options;
    options.oldColor = oldColor;
    options.didStart = [this] { log += "start "; };
    options.didEnd = [this](bool taken) { log += taken ? "taken " : "cancelled "; };
    const auto action = [this](VRTTransientColorPicker& picker) {
      log += "color ";
      last = picker.color();
      if (const auto act = std::exchange(inAction, nullptr)) act();
    };
    const NSEvent event({5, 5}, 0, 1, position);
    grayscale ? VRTTransientColorPicker::popupGrayscalePickerFrom(view.get(), event, action, options)
              : VRTTransientColorPicker::popupColorPickerFrom(view.get(), event, action, options);
    panel = VRTTransientColorPicker::panel();
  }
  ~Picker() override { view.reset(); }

  static NSColor gray(double value) { return NSColor::colorWithCalibratedRed(value, value, value, 1); }
  static QPoint place(int x, int y) { return VRTTransientColorPanel::swatchOrigin() + QPoint(x, y); }

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

TEST_F(Picker, OpensCentredUnderThePointerAndStaysOnTheScreen) {
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  open();
  ASSERT_TRUE(panel);
  EXPECT_LE((panel->geometry().center() - screen.center()).manhattanLength(), 2);
  EXPECT_EQ(log, "start ");
  for (const QPoint corner : {screen.topLeft(), screen.topRight(), screen.bottomLeft(), screen.bottomRight()}) {
    open(true, std::nullopt, corner);
    EXPECT_TRUE(screen.contains(panel->geometry()));
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
  EXPECT_TRUE(panel.isNull());
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
    EXPECT_TRUE(panel.isNull());
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
  void mouseDown(const NSEvent& event) override { VRTTransientColorPicker::popupColorPickerFrom(this, event, {}); }
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
  Owner owner(NSMakeRect(300, 300, 200, 100));
  owner.show();
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

  QTest::mousePress(&owner, Qt::LeftButton, {}, QPoint(5, 5));
  QTest::mouseRelease(VRTTransientColorPicker::panel(), Qt::LeftButton, {}, QPoint(5, 5));
  EXPECT_EQ(owner.ups, 1) << "the picker's window gets the release, and the view still hears of it";
  EXPECT_TRUE(VRTTransientColorPicker::current());
}

}  // namespace
