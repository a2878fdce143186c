// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSFrames.h"
#include "Tests/TarnKit/RecordingView.h"

// Frames count from the lower left unless the superview is flipped, and stay in its coordinates when its height
// changes: once by the program while nothing is shown, once as Qt resizes a window that is shown.
TEST(Frames, CountFromTheLowerLeftUnlessTheSuperviewIsFlipped) {
  for (const bool shown : {false, true}) {
    RecordingView root(NSMakeRect(0, 0, 200, 100)), child(NSMakeRect(10, 20, 50, 30), &root);
    RecordingView flipped(NSMakeRect(0, 40, 100, 40), &root, true), inFlipped(NSMakeRect(1, 2, 3, 4), &flipped);
    QPushButton button(&root);
    NSSetFrame(button, NSMakeRect(5, 6, 7, 8));
    const auto expectHeight = [&](int height) {
      EXPECT_EQ(child.frame(), NSMakeRect(10, 20, 50, 30));
      EXPECT_EQ(child.geometry(), QRect(10, height - 50, 50, 30));
      EXPECT_EQ(child.bounds(), NSMakeRect(0, 0, 50, 30));
      EXPECT_EQ(NSGetFrame(button), NSMakeRect(5, 6, 7, 8));
      EXPECT_EQ(button.geometry(), QRect(5, height - 14, 7, 8));
      EXPECT_EQ(inFlipped.frame(), NSMakeRect(1, 2, 3, 4));
      EXPECT_EQ(inFlipped.geometry(), QRect(1, 2, 3, 4));
    };
    expectHeight(100);
    if (shown) root.show();
    shown ? root.resize(200, 160) : root.setFrameSize({200, 160});
    flipped.setFrameSize({100, 60});
    EXPECT_EQ(flipped.frame(), NSMakeRect(0, 40, 100, 60));
    expectHeight(160);
  }
}

TEST(Frames, FollowByTheirAutoresizingMasks) {
  const NSRect frame = NSMakeRect(10, 20, 50, 30);
  const std::pair<std::uint32_t, NSRect> cases[] = {
      {NSViewNotSizable, frame},
      {NSViewWidthSizable | NSViewHeightSizable, NSMakeRect(10, 20, 90, 50)},
      {NSViewMinXMargin | NSViewMinYMargin, NSMakeRect(50, 40, 50, 30)},
      {NSViewMaxXMargin | NSViewMaxYMargin, frame},
      {NSViewMinXMargin | NSViewMaxXMargin, NSMakeRect(30, 20, 50, 30)},
      {NSViewMinXMargin | NSViewWidthSizable, NSMakeRect(30, 20, 70, 30)},
  };
  for (const auto& [mask, expected] : cases) {
    RecordingView root(NSMakeRect(0, 0, 200, 100));
    QPushButton child(&root);
    NSSetFrame(child, frame);
    NSSetAutoresizingMask(child, mask);
    root.setFrameSize({240, 120});
    EXPECT_EQ(NSGetFrame(child), expected) << mask;
    root.setFrameSize({200, 100});
    EXPECT_EQ(NSGetFrame(child), frame) << mask;
  }
  EXPECT_EQ(NSAutoresizedFrame(frame, NSViewWidthSizable, -80, 0), NSMakeRect(10, 20, 0, 30));
  RecordingView rigid(NSMakeRect(0, 0, 200, 100)), child(frame, &rigid);
  child.setAutoresizingMask(NSViewWidthSizable | NSViewHeightSizable);
  rigid.setAutoresizesSubviews(false);
  rigid.setFrameSize({240, 120});
  EXPECT_EQ(child.frame(), frame);
}

TEST(Frames, HoldWhenAHiddenWindowWasResizedByQtAndWhenAViewIsTakenOut) {
  RecordingView root(NSMakeRect(0, 0, 200, 100)), child(NSMakeRect(10, 20, 50, 30), &root);
  root.resize(300, 150);
  EXPECT_EQ(child.frame(), NSMakeRect(10, 20, 50, 30));
  const RecordingView late(NSMakeRect(0, 0, 10, 10), &root);
  EXPECT_EQ(late.geometry(), QRect(0, 140, 10, 10));
  EXPECT_EQ(child.geometry(), QRect(10, 100, 50, 30));
  root.show();
  for (const int height : {150, 60}) {
    root.setFrameSize({200, double(height)});
    EXPECT_EQ(child.geometry(), QRect(10, height - 50, 50, 30));
    child.removeFromSuperview();
    EXPECT_TRUE(child.superview() == nullptr && !child.isVisible());
    root.addSubview(child);
    EXPECT_TRUE(child.superview() == &root && child.isVisible());
    EXPECT_EQ(child.geometry(), QRect(10, height - 50, 50, 30));
  }
}

TEST(Frames, AnnounceNewBoundsOncePerChange) {
  RecordingView root(NSMakeRect(0, 0, 200, 100)), child(NSMakeRect(10, 20, 50, 30), &root);
  child.setAutoresizingMask(NSViewWidthSizable);
  root.show();
  EXPECT_TRUE(root.boundsSet.empty());
  root.setFrameSize({220, 100});
  root.setFrame(NSMakeRect(7, 7, 220, 100));
  EXPECT_EQ(root.boundsSet, std::vector{NSMakeRect(0, 0, 220, 100)});
  EXPECT_EQ(child.boundsSet, std::vector{NSMakeRect(0, 0, 70, 30)});
}

TEST(Frames, InsideOrdinaryWidgetsFollowTheirLayouts) {
  QWidget window;
  auto* layout = new QVBoxLayout(&window);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* view = new RecordingView(NSMakeRect(0, 0, 90, 40));
  RecordingView child(NSMakeRect(0, 0, 10, 10), view);
  layout->addWidget(view);
  EXPECT_EQ(view->sizeHint(), QSize(90, 40));
  window.resize(300, 200);
  window.show();
  EXPECT_EQ(view->bounds(), NSMakeRect(0, 0, 300, 200));
  EXPECT_EQ(child.geometry(), QRect(0, 190, 10, 10));
  EXPECT_EQ(view->superview(), nullptr);
}

TEST(Frames, TakeAnyNumbers) {
  EXPECT_EQ(NSGeometryOfFrame(NSMakeRect(NAN, NAN, NAN, NAN), 10, true), QRect(0, 0, 0, 0));
  EXPECT_EQ(NSGeometryOfFrame(NSMakeRect(1.6, 2.4, -5, 1e300), 10, true).topLeft(), QPoint(2, 2));
  EXPECT_EQ(NSGeometryOfFrame(NSMakeRect(1.6, 2.4, -5, 3), 10, false), QRect(2, 5, 0, 3));
}

// A point of the window, from its lower left: y 140 is 60 from the top, 50 from that of the outer view, whose y counts
// from the top inside an ordinary widget; so 40 of it are above the flipped one, and 4 above the inner one.
TEST(Coordinates, ConvertThroughNestedAndFlippedViews) {
  QWidget window;
  window.resize(300, 200);
  RecordingView outer(NSMakeRect(20, 10, 200, 100), &window);
  RecordingView flipped(NSMakeRect(30, 40, 50, 20), &outer, true);
  RecordingView inner(NSMakeRect(5, 4, 10, 10), &flipped);
  const std::pair<const RecordingView*, NSPoint> cases[] = {{&outer, {40, 50}}, {&flipped, {10, 10}}, {&inner, {5, 4}}};
  for (const auto& [view, expected] : cases) {
    const NSPoint point = view->convertPointFromWindow({60, 140}), back = view->convertPointToWindow(point);
    EXPECT_TRUE(point.x == expected.x && point.y == expected.y) << point.x << ", " << point.y;
    EXPECT_TRUE(back.x == 60 && back.y == 140) << back.x << ", " << back.y;
  }
}
