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
  struct Case {
    QPointF place;
    QColor color;
  };
  const Case cases[] = {
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
  for (const Case& test : cases) {
    EXPECT_EQ(colors.colorAt(test.place).toQColor().rgb(), test.color.rgb()) << test.place.x() << ' ' << test.place.y();
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
        const QPointF place = swatch.placeOf(color);
        const QColor found = swatch.colorAt(place).toQColor();
        EXPECT_NEAR(found.redF(), color.redComponent(), 0.01) << x << ", " << y;
        EXPECT_NEAR(found.greenF(), color.greenComponent(), 0.01) << x << ", " << y;
        EXPECT_NEAR(found.blueF(), color.blueComponent(), 0.01) << x << ", " << y;
      }
    }
  }
}

// The picker opened from a view at the middle of the screen, and what it says.
struct Picker : testing::Test {
  void open(bool grayscale = false, std::optional<NSColor> oldColor = gray(0.5)) {
    const QPoint centre = QGuiApplication::primaryScreen()->availableGeometry().center();
    open(centre, grayscale, oldColor);
  }
  void open(QPoint position, bool grayscale, std::optional<NSColor> oldColor) {
    VRTTransientColorPicker::Options options;
    options.oldColor = oldColor;
    options.didStart = [this] { log += "start "; };
    options.didEnd = [this](bool taken) { log += taken ? "taken " : "cancelled "; };
    const auto action = [this](VRTTransientColorPicker& picker) {
      log += "color ";
      last = picker.color();
      if (inAction) inAction();
    };
    const NSEvent event({5, 5}, 0, 1, position);
    if (grayscale) {
      VRTTransientColorPicker::popupGrayscalePickerFrom(view.get(), event, action, options);
    } else {
      VRTTransientColorPicker::popupColorPickerFrom(view.get(), event, action, options);
    }
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
    open(corner, true, std::nullopt);
    EXPECT_TRUE(screen.contains(panel->geometry()));
  }
}

TEST_F(Picker, ReportsTheColorUnderThePointerAndTakesItOnAClick) {
  open(true);
  move(place(51, 10));
  ASSERT_TRUE(last);
  EXPECT_NEAR(last->redComponent(), 0.2, 1e-9);
  move(QPoint(0, 3));
  EXPECT_EQ(last->redComponent(), 0);
  move(QPoint(-30, 3));  // outside nothing is reported
  EXPECT_EQ(log, "start color color ");
  QTest::mousePress(panel, Qt::LeftButton, {}, place(102, 10));
  EXPECT_NEAR(last->greenComponent(), 0.4, 1e-9);
  ASSERT_TRUE(VRTTransientColorPicker::current());
  QTest::mouseRelease(panel, Qt::LeftButton, {}, place(255, 10));
  EXPECT_EQ(last->blueComponent(), 1);
  EXPECT_EQ(log, "start color color color color taken ");
  EXPECT_EQ(VRTTransientColorPicker::current(), nullptr);
  EXPECT_FALSE(panel->isVisible());
}

TEST_F(Picker, LettingGoTakesOnlyAfterARealDrag) {
  open();
  const QPoint middle = panel->rect().center();
  QTest::mouseRelease(panel, Qt::RightButton, {}, middle);  // of the press that opened it
  EXPECT_EQ(log, "start ");
  move(middle + QPoint(1, 0), Qt::LeftButton);
  QTest::mouseRelease(panel, Qt::LeftButton, {}, middle + QPoint(1, 0));
  EXPECT_EQ(log, "start color ");
  move(middle + QPoint(40, 0), Qt::LeftButton);
  QTest::mouseRelease(panel, Qt::LeftButton, {}, middle + QPoint(40, 0));
  EXPECT_EQ(log, "start color color color taken ");
}

TEST_F(Picker, CancellingPutsTheOldColorBack) {
  struct Case {
    const char* name;
    std::function<void()> cancel;
  };
  const Case cases[] = {
      {"Escape", [this] { QTest::keyClick(panel, Qt::Key_Escape); }},
      {"click outside", [this] { QTest::mousePress(panel, Qt::LeftButton, {}, QPoint(-20, -20)); }},
      {"release outside",
       [this] {
         move(QPoint(-90, 5), Qt::LeftButton);
         QTest::mouseRelease(panel, Qt::LeftButton, {}, QPoint(-90, 5));
       }},
      {"closed from outside", [this] { panel->hide(); }},
      {"cancel", [] { VRTTransientColorPicker::current()->cancel(); }},
      {"another picker", [this] { VRTTransientColorPicker::popupColorPickerFrom(view.get(), NSEvent(), {}); }},
  };
  for (const Case& test : cases) {
    log.clear();
    open();
    move(place(30, 20));
    test.cancel();
    EXPECT_EQ(log, "start color color cancelled ") << test.name;
    EXPECT_EQ(last->redComponent(), 0.5) << test.name;
  }
}

TEST_F(Picker, CancellingWithoutAReportOrAnOldColorCallsNoAction) {
  open();
  QTest::keyClick(panel, Qt::Key_Escape);
  EXPECT_EQ(log, "start cancelled ");
  log.clear();
  open(false, std::nullopt);
  move(place(30, 20));
  QTest::keyClick(panel, Qt::Key_Escape);
  EXPECT_EQ(log, "start color cancelled ");
}

TEST_F(Picker, TheKeyboardMovesFromTheOldColor) {
  open(true, gray(0.2));
  QTest::keyClick(panel, Qt::Key_Right);
  EXPECT_NEAR(last->redComponent(), 52 / 255.0, 1e-6);
  QTest::keyClick(panel, Qt::Key_Left, Qt::ShiftModifier);
  EXPECT_NEAR(last->redComponent(), 42 / 255.0, 1e-6);
  QTest::keyClick(panel, Qt::Key_Return);
  EXPECT_EQ(log, "start color color taken ");
  // Enter alone keeps what was there; without an old color it takes the place that is shown.
  log.clear();
  open(true, gray(0.2));
  QTest::keyClick(panel, Qt::Key_Enter);
  EXPECT_EQ(log, "start taken ");
  log.clear();
  open(true, std::nullopt);
  QTest::keyClick(panel, Qt::Key_Enter);
  EXPECT_EQ(log, "start color taken ");
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

TEST_F(Picker, TheActionMayDeleteTheOwnerWhileItMovesOrEnds) {
  const std::function<void()> steps[] = {
      [this] { move(place(30, 20)); },
      [this] { QTest::mousePress(panel, Qt::LeftButton, {}, place(30, 20)); },
      [this] { QTest::keyClick(panel, Qt::Key_Down); },
  };
  for (const auto& step : steps) {
    view = std::make_unique<NSTarnView>(NSMakeRect(0, 0, 50, 50));
    open();
    log.clear();
    inAction = [this] { view.reset(); };
    step();
    EXPECT_EQ(log, "color ");
    EXPECT_TRUE(panel.isNull());
  }
  inAction = nullptr;
  view = std::make_unique<NSTarnView>(NSMakeRect(0, 0, 50, 50));
  open();
  move(place(30, 20));
  log.clear();
  inAction = [this] { view.reset(); };
  QTest::keyClick(panel, Qt::Key_Escape);
  EXPECT_EQ(log, "color ");
}

TEST_F(Picker, TheActionMayOpenAnotherPickerOrCancelThisOne) {
  open();
  inAction = [this] {
    inAction = nullptr;
    VRTTransientColorPicker::current()->cancel();
  };
  move(place(30, 20));
  EXPECT_EQ(log, "start color color cancelled ");
  log.clear();
  open();
  inAction = [this] {
    inAction = nullptr;
    open(true);
  };
  move(place(30, 20));
  EXPECT_EQ(log, "start color color cancelled start ");
  EXPECT_TRUE(VRTTransientColorPicker::current());
}

// Press in the view, drag and let go: as the window system delivers it, which knows nothing of pop-ups.
TEST_F(Picker, OnePressDragAndReleasePicks) {
  struct Owner : NSTarnView {
    using NSTarnView::NSTarnView;
    void rightMouseDown(const NSEvent& event) override {
      VRTTransientColorPicker::Options options;
      options.didEnd = [this](bool isTaken) { taken = isTaken; };
      VRTTransientColorPicker::popupGrayscalePickerFrom(
          this, event, [this](VRTTransientColorPicker& picker) { color = picker.color(); }, options);
    }
    std::optional<bool> taken;
    std::optional<NSColor> color;
  };
  Owner owner(NSMakeRect(300, 300, 200, 100));
  owner.show();
  QWindow* window = owner.windowHandle();
  QTest::mousePress(window, Qt::RightButton, {}, QPoint(100, 50));
  panel = VRTTransientColorPicker::panel();
  ASSERT_TRUE(panel);
  const QPoint start = panel->mapFromGlobal(owner.mapToGlobal(QPoint(100, 50)));
  QTest::mouseMove(window, QPoint(151, 50));
  ASSERT_TRUE(owner.color);
  const double expected = (start.x() + 51 - VRTTransientColorPanel::swatchOrigin().x()) / 255.0;
  EXPECT_NEAR(owner.color->redComponent(), expected, 0.01);
  EXPECT_FALSE(owner.taken);
  QTest::mouseRelease(window, Qt::RightButton, {}, QPoint(151, 50));
  EXPECT_EQ(owner.taken, true);
  EXPECT_NEAR(owner.color->redComponent(), expected, 0.01);
}

// A press in a view opens the picker; its release goes to the picker's window, and the view still hears of it.
TEST_F(Picker, TheOwnersMouseUpIsNotLost) {
  struct Owner : NSTarnView {
    using NSTarnView::NSTarnView;
    void mouseDown(const NSEvent& event) override { VRTTransientColorPicker::popupColorPickerFrom(this, event, {}); }
    void mouseUp(const NSEvent&) override { ++ups; }
    int ups = 0;
  };
  Owner owner(NSMakeRect(0, 0, 50, 50));
  owner.show();
  QTest::mousePress(&owner, Qt::LeftButton, {}, QPoint(5, 5));
  QTest::mouseRelease(VRTTransientColorPicker::panel(), Qt::LeftButton, {}, QPoint(5, 5));
  EXPECT_EQ(owner.ups, 1);
  EXPECT_TRUE(VRTTransientColorPicker::current());
}

}  // namespace
