// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/TarnKit/RecordingView.h"

namespace {

void move(QWidget& widget, QPoint position, Qt::MouseButtons buttons,
          Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  QMouseEvent event(QEvent::MouseMove, position, widget.mapTo(widget.window(), position), widget.mapToGlobal(position),
                    Qt::NoButton, buttons, modifiers);
  QCoreApplication::sendEvent(&widget, &event);
}

// Views are drawn on half-open rectangles: the pixel just above a lower edge is in, the one below it is not, whichever
// way the view counts.
TEST(Mouse, HitsExactlyTheRowsThatARectanglePaints) {
  for (const bool flipped : {false, true}) {
    RecordingView view(NSMakeRect(0, 0, 40, 30), nullptr, flipped);
    view.show();
    const NSRect rect = NSMakeRect(10, 6, 5, 8);
    const QRect painted = view.toWidget(rect);
    for (int y = 0; y < 30; ++y) {
      view.calls.clear();
      QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(10, y));
      ASSERT_EQ(view.names(), "down up");
      EXPECT_EQ(NSPointInRect(view.calls[0].point, rect), painted.contains(10, y)) << y << flipped;
    }
    EXPECT_EQ(view.calls[0].point.x, 10);
  }
}

TEST(Mouse, SequenceModifiersAndClickCounts) {
  RecordingView view(NSMakeRect(0, 0, 40, 30));
  const QPoint at(4, 5), there(14, 7);
  view.show();
  QTest::mousePress(&view, Qt::LeftButton, Qt::ControlModifier | Qt::AltModifier, at);
  move(view, there, Qt::LeftButton, Qt::ShiftModifier);
  QTest::mouseRelease(&view, Qt::LeftButton, {}, there);
  QTest::mouseClick(&view, Qt::LeftButton, {}, at);
  QTest::mouseDClick(&view, Qt::LeftButton, {}, at);
  QTest::mouseRelease(&view, Qt::LeftButton, {}, at);
  move(view, QPoint(1, 1), Qt::NoButton);
  ASSERT_EQ(view.names(), "down dragged up down up down up moved");
  const auto& [down, dragged] = std::tie(view.calls[0], view.calls[1]);
  EXPECT_TRUE(down.flags == (NSControlKeyMask | NSAlternateKeyMask) && dragged.flags == NSShiftKeyMask);
  EXPECT_TRUE(dragged.point.x - down.point.x == 10 && dragged.point.y - down.point.y == -2);
  EXPECT_TRUE(down.clicks == 1 && view.calls[5].clicks == 2);

  view.calls.clear();
  QTest::mousePress(&view, Qt::LeftButton, {}, at);
  QTest::mouseClick(&view, Qt::RightButton, {}, at);
  QTest::mouseRelease(&view, Qt::LeftButton, {}, at);
  QTest::mouseClick(&view, Qt::RightButton, {}, at);
  QCoreApplication::processEvents();
  EXPECT_EQ(view.names(), "down up right") << "other buttons do nothing while the left one is held";
}

TEST(Mouse, UnwantedEventsGoToTheSuperviewsOnceAndThenToTheWidgetAround) {
  struct : QWidget {
    void mousePressEvent(QMouseEvent* event) override { places.push_back(event->position().toPoint()); }
    void mouseReleaseEvent(QMouseEvent*) override { ++releases; }
    std::vector<QPoint> places;  // of presses
    int releases = 0;
  } window;
  window.resize(100, 100);
  RecordingView outer(NSMakeRect(10, 20, 60, 60), &window);
  RecordingView middle(NSMakeRect(0, 0, 50, 50), &outer);
  NSTarnView plain(NSMakeRect(0, 0, 40, 40), &middle);
  outer.passesOn = middle.passesOn = true;
  window.show();
  QTest::mouseClick(&plain, Qt::LeftButton, {}, plain.toWidget(NSPoint{3, 5}).toPoint());
  for (const RecordingView* view : {&middle, &outer}) EXPECT_EQ(view->names(), "down up");
  EXPECT_EQ(outer.calls[0].point.x, 3);
  EXPECT_EQ(window.places, std::vector{QPoint(13, 75)});
  EXPECT_EQ(window.releases, 1);

  middle.passesOn = false;
  QTest::mouseClick(&plain, Qt::LeftButton, {}, plain.toWidget(NSPoint{3, 5}).toPoint());
  EXPECT_EQ(outer.calls.size(), 2U);
  EXPECT_EQ(window.places.size() + window.releases, 2U);

  middle.passesOn = true;
  for (const bool asDown : {true, false}) {
    outer.calls.clear();
    middle.rightIsDown = asDown;
    QTest::mouseClick(&middle, Qt::RightButton, {}, QPoint(5, 5));
    QCoreApplication::processEvents();
    EXPECT_EQ(outer.names(), asDown ? "down" : "right") << "a right press can be handed on as mouseDown";
  }
}

// The release goes to a pop-up that the press opened, or to the superview; the view must not stay in its drag for ever.
TEST(Mouse, TheViewHearsAReleaseThatGoesElsewhere) {
  auto view = std::make_unique<RecordingView>(NSMakeRect(0, 0, 40, 30));
  QWidget other;
  const auto press = [](QWidget* at) { QTest::mousePress(at, Qt::LeftButton, {}, QPoint(4, 5)); };
  const auto releaseElsewhere = [&] { QTest::mouseRelease(&other, Qt::LeftButton, {}, QPoint(1, 1)); };
  view->show();
  press(view.get());
  view->hide();
  for (int i = 0; i < 2; ++i) {
    releaseElsewhere();
    EXPECT_EQ(view->names(), "down up");
  }
  view->show();
  press(view.get());
  for (const int y : {6, 7}) move(*view, QPoint(4, y), Qt::NoButton);  // released over another program
  EXPECT_EQ(view->names(), "down up down up moved");
  releaseElsewhere();
  for (const bool wholeWindow : {false, true}) {
    QWidget outer;
    RecordingView inner(NSMakeRect(0, 0, 40, 30), &outer);
    outer.show();
    QTest::mousePress(outer.windowHandle(), Qt::LeftButton, {}, QPoint(4, 5));
    (wholeWindow ? outer : inner).setEnabled(false);
    QTest::mouseRelease(outer.windowHandle(), Qt::LeftButton, {}, QPoint(4, 5));
    EXPECT_TRUE(inner.names().ends_with("down up")) << "disabled meanwhile: " << inner.names();
  }
  view->calls.clear();
  press(view.get());
  RecordingView next(NSMakeRect(0, 0, 40, 30));
  press(&next);
  EXPECT_EQ(view->names(), "down up") << "at the latest with a press elsewhere";
  press(view.get());
  view.reset();
  releaseElsewhere();
}

// A dialog that the press opened, with an event loop of its own, sees the release, or keeps it from everybody.
TEST(Mouse, TheReleaseWaitsForTheHandlerOfThePress) {
  for (const bool kept : {false, true}) {
    RecordingView view(NSMakeRect(0, 0, 40, 30));
    view.show();
    QWindow* const window = view.windowHandle();
    QDialog dialog;
    view.inHandler = [&] {
      if (view.calls.size() > 1) return;
      QTest::mouseMove(window, QPoint(9, 9));
      if (kept) QTimer::singleShot(0, &dialog, [&] { QTest::mouseRelease(window, Qt::LeftButton, {}, {9, 9}); });
      if (kept) QTimer::singleShot(20, &dialog, &QDialog::reject);
      if (kept) dialog.exec();
      if (!kept) QTest::mouseRelease(window, Qt::LeftButton, {}, {9, 9});
      EXPECT_EQ(view.names(), "down");
    };
    QTest::mousePress(window, Qt::LeftButton, {}, {4, 5});
    EXPECT_EQ(view.names(), "down up") << kept;
    QTest::mouseRelease(window, Qt::LeftButton, {}, {4, 5});
    EXPECT_EQ(view.names(), "down up") << kept;
  }
}

// At every step of a gesture.
TEST(Mouse, AHandlerMayDeleteTheViewItsSuperviewOrTheWindow) {
  using Steps = std::vector<std::function<void(QWidget&)>>;
  const auto left = [](QWidget& view) { QTest::mousePress(&view, Qt::LeftButton, {}, QPoint(4, 5)); };
  const auto right = [](QWidget& view) {
    QTest::mousePress(&view, Qt::RightButton, {}, QPoint(4, 5));
    QCoreApplication::processEvents();
  };
  const auto inWindow = [](Qt::MouseButton button) {  // where Qt itself holds on to the receiver
    return [=](QWidget& view) { QTest::mousePress(view.window()->windowHandle(), button, {}, QPoint(10, 40)); };
  };
  const Steps gestures[] = {
      {left, [](QWidget& view) { move(view, QPoint(9, 9), Qt::LeftButton); },
       [](QWidget& view) { QTest::mouseRelease(&view, Qt::LeftButton, {}, QPoint(9, 9)); }},
      {[](QWidget& view) { QTest::mouseDClick(&view, Qt::LeftButton, {}, QPoint(4, 5)); }},
      {right},
      {[](QWidget& view) { move(view, QPoint(3, 3), Qt::NoButton); }},
      {[](QWidget& view) { QTest::keyPress(&view, Qt::Key_Shift); }},
      {inWindow(Qt::LeftButton)},
      {[](QWidget& view) {
        QTest::mousePress(&view, Qt::RightButton, {}, QPoint(4, 5));  // not told when the next one comes
        QTest::mousePress(view.window()->windowHandle(), Qt::RightButton, {}, QPoint(10, 40));
      }},
  };
  for (const Steps& steps : gestures) {
    for (std::size_t last = 0; last < steps.size(); ++last) {
      for (const char* victim : {"inner", "outer", "window"}) {
        auto* window = new QWidget;
        window->resize(100, 100);
        auto* outer = new RecordingView(NSMakeRect(0, 0, 60, 60), window);
        auto* inner = new RecordingView(NSMakeRect(0, 0, 50, 50), outer);
        window->show();
        QWidget* const chosen = *victim == 'i' ? inner : *victim == 'o' ? outer : window;
        const QPointer<QWidget> alive = inner, around = window;
        for (std::size_t step = 0; step <= last; ++step) {
          ASSERT_TRUE(alive);
          if (step == last) inner->inHandler = [chosen] { delete chosen; };
          steps[step](*inner);
        }
        EXPECT_TRUE(alive.isNull()) << victim;
        if (!around) continue;
        QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, QPoint(10, 40));
        delete window;
      }
    }
  }
}

TEST(ContextMenu, OpensByRightPressAndByKeyboardAndCleansUp) {
  struct MenuView : NSTarnView {
    using NSTarnView::NSTarnView;
    QMenu* menuForEvent(const NSEvent&) override {
      if (!hasMenu) return nullptr;
      menu = new QMenu(this);
      menu->addAction("One");
      return menu;
    }
    bool hasMenu = true;
    QPointer<QMenu> menu;
  } view(NSMakeRect(0, 0, 50, 50));
  view.show();
  QTest::mousePress(view.windowHandle(), Qt::RightButton, {}, QPoint(5, 5));
  ASSERT_TRUE(view.menu && view.menu->isVisible());
  view.menu->hide();
  EXPECT_TRUE(QTest::qWaitFor([&] { return view.menu.isNull(); }, 2000));

  for (const bool hasMenu : {true, false}) {
    view.hasMenu = hasMenu;
    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(5, 5), view.mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(&view, &key);
    EXPECT_EQ(key.isAccepted(), hasMenu);
    EXPECT_EQ(view.menu && view.menu->isVisible(), hasMenu);
    if (view.menu) view.menu->hide();
  }
}

TEST(Keyboard, ModifierKeysAreFlagsAndOthersReachTheSuperview) {
  struct KeyView : RecordingView {
    using RecordingView::RecordingView;
    void keyDown(QKeyEvent& event) override { keys.push_back(event.key()); }
    std::vector<int> keys;
  };
  KeyView outer(NSMakeRect(0, 0, 60, 60));
  RecordingView inner(NSMakeRect(0, 0, 50, 50), &outer);
  outer.show();
  QTest::keyClick(&inner, Qt::Key_Alt);
  ASSERT_EQ(inner.names(), "flags flags");
  EXPECT_TRUE(inner.calls[0].flags == NSAlternateKeyMask && inner.calls[1].flags == 0);
  QTest::keyClick(&inner, Qt::Key_Left);
  EXPECT_EQ(outer.keys, std::vector<int>{Qt::Key_Left});
}

TEST(LiveResize, RunsFromTheFirstToAMomentAfterTheLastResizeByTheUser) {
  QWidget window;
  window.resize(100, 100);
  RecordingView view(NSMakeRect(0, 0, 50, 50), &window);
  window.show();
  QTest::qWait(1);
  window.resize(110, 100);
  EXPECT_FALSE(view.inLiveResize());
  QResizeEvent resize(QSize(120, 100), QSize(110, 100));
  QSpontaneKeyEvent::setSpontaneous(&resize);
  qApp->notify(&window, &resize);
  EXPECT_TRUE(view.inLiveResize() && view.calls.empty());
  EXPECT_TRUE(QTest::qWaitFor([&] { return !view.inLiveResize(); }, 5000));
  EXPECT_EQ(view.names(), "endLiveResize");
}

TEST(Mouse, CursorsAndToolTipsBelongToTheirPlaces) {
  struct CursorView : NSTarnView {
    using NSTarnView::NSTarnView;
    std::optional<QCursor> cursorAtPoint(NSPoint point) const override {
      return point.x < 10 ? std::optional<QCursor>(Qt::PointingHandCursor) : std::nullopt;
    }
  };
  CursorView view(NSMakeRect(0, 0, 100, 50));
  view.show();
  for (const auto& [x, shape] : {std::pair{5, Qt::PointingHandCursor}, {15, Qt::ArrowCursor}}) {
    move(view, QPoint(x, 5), Qt::NoButton);
    EXPECT_EQ(view.cursor().shape(), shape);
  }
  view.setToolTip("whole");
  view.addToolTipRect(NSMakeRect(10, 0, 11, 14), "first");
  view.addToolTipRect(NSMakeRect(15, 0, 11, 14), "second");
  const std::pair<NSPoint, const char*> tips[] = {
      {{10, 0}, "first"}, {{16, 3}, "first"}, {{21, 3}, "second"}, {{21, 14}, "whole"}};
  for (const auto& [point, tip] : tips) EXPECT_EQ(view.toolTipAtPoint(point), tip);
  view.removeAllToolTips();
  EXPECT_EQ(view.toolTipAtPoint({16, 3}), "whole");
}

}  // namespace
