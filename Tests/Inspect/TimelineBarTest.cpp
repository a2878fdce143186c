// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/TimelineBar.h"

#include "Host/Clips/TimeCodes.h"
#include "Host/Inspect/Appearance.h"
#include "Host/Playback/MemoryButton.h"
#include "Host/Playback/PlaybackActions.h"
#include "Host/Playback/PositionField.h"
#include "Host/Playback/TimelineGeometry.h"
#include "Host/Playback/TimelineStrip.h"
#include "Tests/Inspect/InspectFixture.h"
#include "Tests/Inspect/PlaybackFixture.h"

#include <QAccessible>

using host::PlaybackTimes;
using host::PositionUnit;
using host::TimelineGeometry;
using playback_test::newPicture;
using playback_test::Playing;

namespace {

PlaybackTimes sequence() {
  PlaybackTimes times = PlaybackTimes::even(96, {24, 1});
  times.setFirstNumber(1001);
  return times;
}

PlaybackTimes clipFrom(const std::string& code, std::uint64_t count, const host::Rational& rate) {
  PlaybackTimes times = PlaybackTimes::even(count, rate);
  times.setFirstTimeCode(*host::packedTimeCode(code, times.framesPerSecond()));
  return times;
}

struct Shown {
  explicit Shown(const PlaybackTimes& times, int width = 900) : playing(times), bar(playing.player) {
    bar.resize(width, bar.height());
    bar.show();
    inspect_test::handleEvents();
  }
  TimelineGeometry geometry() { return bar.strip().geometryNow(); }
  QPoint at(std::uint64_t frame, double y) { return QPointF(geometry().center(frame), y).toPoint(); }
  void drag(const QPoint& from, const QPoint& to) {
    QTest::mousePress(&bar.strip(), Qt::LeftButton, {}, from);
    QMouseEvent move(QEvent::MouseMove, to, bar.strip().mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(&bar.strip(), &move);
    QTest::mouseRelease(&bar.strip(), Qt::LeftButton, {}, to);
  }
  Playing playing;
  host::TimelineBar bar;
};

}  // namespace

TEST(PositionText, UnderstandsWhatPeopleType) {
  const PlaybackTimes numbered = sequence();
  const PlaybackTimes clip = clipFrom("01:00:00:00", 2500, {25, 1});
  const PlaybackTimes dropping = clipFrom("00:59:58;00", 4000, {30000, 1001});
  const PlaybackTimes midnight = clipFrom("23:59:59:00", 100, {25, 1});
  const PlaybackTimes fast = clipFrom("00:00:00:00", 1000, {60, 1});
  const PlaybackTimes transition = PlaybackTimes::transition({25, 1});
  const struct {
    const PlaybackTimes& times;
    const char* text;
    std::int64_t frame;  // -1: not understood
    PositionUnit unit = PositionUnit::Frames;
  } rows[] = {
      {numbered, "1001", 0},
      {numbered, " 1042 ", 41},
      {numbered, "3", 0},
      {numbered, "99999999999999999999", 95},
      {numbered, "+5", 25},
      {numbered, "-3", 17},
      {numbered, "\u22123", 17},
      {numbered, "-100", 0},
      {numbered, "2s", 48},
      {numbered, "+0,5s", 32},
      {numbered, "2", 48, PositionUnit::Seconds},
      {numbered, "0:12", 12},
      {numbered, "+1:00", 44},
      {numbered, "50%", 48},
      {numbered, "12.5", -1},
      {numbered, "", -1},
      {numbered, "+", -1},
      {numbered, "1e3", -1},
      {numbered, "nan", -1},
      {numbered, "1:2:3:4:5", -1},
      {numbered, "1::2", -1},
      {numbered, "0:30", -1},
      {numbered, "0:12s", -1},
      {clip, "01:00:01:05", 30, PositionUnit::TimeCode},
      {clip, "00:00:00:00", 0, PositionUnit::TimeCode},
      {clip, "02:00:00:00", 2499, PositionUnit::TimeCode},
      {clip, "40", 40, PositionUnit::TimeCode},
      {dropping, "01:00:00;00", 60},
      {dropping, "01:00:00:00", 60},
      {dropping, "01:01:00;02", 1860},
      {dropping, "01:01:00;00", 1860},
      {midnight, "00:00:01:00", 50},
      {midnight, "23:59:59:10", 10},
      {fast, "00:00:01:59", 119},
      {transition, "0.42", 420, PositionUnit::Progress},
      {transition, "1", 1000, PositionUnit::Progress},
      {transition, "42%", 420, PositionUnit::Progress},
      {transition, "+0,1", 120, PositionUnit::Progress},
      {transition, "0:10", -1, PositionUnit::Progress},
  };
  for (const auto& row : rows) {
    const auto frame = host::parsedPosition(QString::fromUtf8(row.text), row.times, 20, row.unit);
    EXPECT_EQ(frame ? static_cast<std::int64_t>(*frame) : -1, row.frame) << row.text;
  }
  // What is shown leads back to the same frame.
  for (const PlaybackTimes* times : {&numbered, &clip, &dropping, &midnight, &fast}) {
    for (const PositionUnit unit : host::unitsOf(*times)) {
      if (unit == PositionUnit::Seconds) continue;  // to a hundredth
      for (std::uint64_t frame = 0; frame < times->count(); ++frame) {
        const QString text = host::positionText(*times, frame, unit);
        ASSERT_EQ(host::parsedPosition(text, *times, 20, unit), frame) << text.toStdString();
      }
    }
  }
  EXPECT_EQ(host::positionText(transition, 429, PositionUnit::Progress), "0.42");
  EXPECT_EQ(host::positionText(fast, 61, PositionUnit::TimeCode), "00:00:01:01");
  EXPECT_EQ(host::unitsOf(PlaybackTimes::even(9, {120, 1})).size(), 2u) << "no time codes at that rate";
  EXPECT_EQ(host::unitsOf(PlaybackTimes::uneven({0, 0.3}, 1, {25, 1})).size(), 2u);
}

TEST(TimelineTicks, StandAtRoundNumbersAndApart) {
  const struct {
    PlaybackTimes times;
    PositionUnit unit;
    double width, apart;
    std::vector<std::pair<double, const char*>> first;  // labels and where they stand
  } rows[] = {
      {sequence(), PositionUnit::Frames, 960, 60, {{9, "1010"}, {19, "1020"}}},
      {sequence(), PositionUnit::Seconds, 960, 100, {{0, "0"}, {12, "0.5"}, {24, "1"}}},
      {sequence(), PositionUnit::TimeCode, 960, 100, {{0, "00:00:00:00"}, {12, "00:00:00:12"}}},
      {clipFrom("00:59:58;00", 40000, {30000, 1001}),
       PositionUnit::TimeCode,
       800,
       100,
       {{60, "01:00:00;00"}, {9052, "01:05:00;02"}, {18042, "01:10:00;00"}}},
      {clipFrom("23:59:50:00", 1000, {25, 1}),
       PositionUnit::TimeCode,
       800,
       200,
       {{0, "23:59:50:00"}, {250, "00:00:00:00"}}},
      {PlaybackTimes::even(100000, {25, 1}), PositionUnit::Seconds, 800, 100, {{0, "0:00"}, {15000, "10:00"}}},
      {PlaybackTimes::transition({25, 1}), PositionUnit::Progress, 1001, 150, {{0, "0"}, {250, "0.25"}}},
  };
  for (const auto& row : rows) {
    const auto ticks = host::timelineTicks(row.times, row.unit, row.width, row.apart);
    std::vector<std::pair<double, std::string>> labels;
    for (std::size_t i = 0; i < ticks.size(); ++i) {
      if (i > 0) {
        EXPECT_GT(ticks[i].frame, ticks[i - 1].frame);
      }
      EXPECT_LT(ticks[i].frame, static_cast<double>(row.times.count()));
      if (!ticks[i].label.isEmpty()) labels.emplace_back(ticks[i].frame, ticks[i].label.toStdString());
    }
    ASSERT_GE(labels.size(), row.first.size()) << row.first[0].second;
    for (std::size_t i = 0; i < row.first.size(); ++i) {
      EXPECT_NEAR(labels[i].first, row.first[i].first, 0.5) << row.first[i].second;
      EXPECT_EQ(labels[i].second, row.first[i].second);
    }
    const double points = row.width / static_cast<double>(row.times.count());
    for (std::size_t i = 1; i < labels.size(); ++i) {
      EXPECT_GE((labels[i].first - labels[i - 1].first) * points, row.apart * 0.95) << row.first[0].second;
    }
  }
}

TEST(TimelineGeometry, EveryFrameHasItsCell) {
  for (const std::uint64_t count : {std::uint64_t{1}, std::uint64_t{7}, std::uint64_t{96}, std::uint64_t{100000}}) {
    const TimelineGeometry geometry({700, 44}, count);
    for (std::uint64_t frame = 0; frame < count; frame += 1 + count / 1000) {
      ASSERT_EQ(geometry.frameAt(geometry.center(frame)), frame);
    }
    EXPECT_EQ(geometry.frameAt(-1e9), 0u);
    EXPECT_EQ(geometry.frameAt(1e9), count - 1);
  }
}

TEST(TimelineBar, ScrubsAndDragsItsPoints) {
  Shown shown(sequence());
  const double track = shown.geometry().track().center().y();
  shown.drag(shown.at(10, 5), shown.at(40, 5));
  EXPECT_EQ(shown.playing.player.position(), 40u);
  EXPECT_EQ(shown.playing.source.orders.front(), 40u) << "what lies between was dropped";
  shown.drag(QPointF(shown.geometry().left(0), track).toPoint(), shown.at(20, track));
  EXPECT_EQ(shown.playing.player.inPoint(), 20u);
  shown.drag(QPointF(shown.geometry().left(96), track).toPoint(), shown.at(5, track));
  EXPECT_EQ(shown.playing.player.outPoint(), 20u) << "not beyond the other";
  EXPECT_EQ(shown.playing.player.position(), 40u);
  shown.drag(shown.at(60, track), shown.at(61, track));
  EXPECT_EQ(shown.playing.player.position(), 61u) << "beside the points the playhead comes";
}

TEST(TimelineBar, IsWorkedByKeysAndReadAloud) {
  Shown shown(sequence());
  auto& player = shown.playing.player;
  QWidget& strip = shown.bar.strip();
  const struct {
    int key;
    Qt::KeyboardModifiers modifiers;
    std::uint64_t position;
  } rows[] = {{Qt::Key_Right, {}, 1}, {Qt::Key_PageDown, {}, 11}, {Qt::Key_Right, Qt::ShiftModifier, 21},
              {Qt::Key_Left, {}, 20}, {Qt::Key_End, {}, 95},      {Qt::Key_PageUp, {}, 85},
              {Qt::Key_Home, {}, 0},  {Qt::Key_Left, {}, 0}};
  for (const auto& row : rows) {
    QTest::keyClick(&strip, static_cast<Qt::Key>(row.key), row.modifiers);
    EXPECT_EQ(player.position(), row.position) << row.key;
  }
  QAccessibleInterface* slider = QAccessible::queryAccessibleInterface(&strip);
  ASSERT_TRUE(slider && slider->valueInterface());
  EXPECT_EQ(slider->role(), QAccessible::Slider);
  slider->valueInterface()->setCurrentValue(33);
  EXPECT_EQ(player.position(), 33u);
  EXPECT_EQ(slider->text(QAccessible::Description), "1034");
  for (const QWidget* widget : shown.bar.findChildren<QWidget*>()) {
    if (widget->focusPolicy() != Qt::NoFocus && !qobject_cast<const QMenu*>(widget)) {
      EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->metaObject()->className();
    }
  }

  const auto& actions = shown.bar.playbackActions();
  actions.setIn->trigger();
  actions.goToLast->trigger();
  actions.stepBack->trigger();
  actions.setOut->trigger();
  EXPECT_EQ(player.inPoint(), 33u);
  EXPECT_EQ(player.outPoint(), 94u);
  actions.goToIn->trigger();
  EXPECT_EQ(player.position(), 33u);
  actions.realTime->trigger();
  EXPECT_EQ(player.mode(), host::PlayMode::RealTime);
  std::set<QKeySequence> keys;
  for (const QAction* action : shown.bar.actions()) {
    EXPECT_EQ(action->text().isEmpty(), action->isSeparator());
    const QKeySequence own = action->shortcut();
    EXPECT_TRUE(own.isEmpty() || keys.insert(own).second) << own.toString().toStdString();
  }
}

TEST(TimelineBar, TheFieldGoesWhereItIsTold) {
  Shown shown(clipFrom("01:00:00:00", 2500, {25, 1}));
  auto& player = shown.playing.player;
  host::PositionField& field = shown.bar.field();
  const auto type = [&](const QString& text) {
    shown.bar.playbackActions().goToPosition->trigger();
    QTest::keyClicks(&field, text);
    QTest::keyClick(&field, Qt::Key_Return);
  };
  type("120");
  EXPECT_EQ(player.position(), 120u);
  type("+5");
  EXPECT_EQ(player.position(), 125u);
  EXPECT_EQ(field.text(), "125");
  shown.bar.setUnit(PositionUnit::TimeCode);
  EXPECT_EQ(field.text(), "01:00:05:00");
  type("no number");
  EXPECT_EQ(player.position(), 125u);
  EXPECT_EQ(field.text(), "no number") << "stays until it is mended or taken back";
  player.goTo(200);
  EXPECT_EQ(field.text(), "no number");
  QTest::keyClick(&field, Qt::Key_Escape);
  EXPECT_EQ(field.text(), "01:00:08:00");
  QTest::keyClick(&field, Qt::Key_Up);
  EXPECT_EQ(player.position(), 201u);
  EXPECT_EQ(field.text(), "01:00:08:01");
}

TEST(TimelineBar, OfAStillThereIsOneLineOnly) {
  Shown shown(PlaybackTimes{});
  EXPECT_FALSE(shown.bar.strip().isVisible());
  const int height = shown.bar.height();
  shown.playing.player.setTimes(sequence());
  EXPECT_TRUE(shown.bar.strip().isVisible());
  EXPECT_GT(shown.bar.height(), height);
}

TEST(TimelineBar, PaintsWhatIsInMemory) {
  Shown shown(sequence());
  const auto colors = [&] {
    shown.playing.player.goTo(95);
    QTest::qWait(130);  // what the cache holds is told at most ten times a second
    const QImage image = shown.bar.strip().grab().toImage();
    const double ratio = image.devicePixelRatio();
    const double y = (shown.geometry().track().bottom() - 1.5) * ratio;
    std::vector<QRgb> line;
    for (const std::uint64_t frame : {15, 30, 45}) {
      line.push_back(image.pixel(static_cast<int>(shown.geometry().center(frame) * ratio), static_cast<int>(y)));
    }
    return line;
  };
  const auto before = colors();
  EXPECT_EQ(before[0], before[1]);
  for (std::uint64_t frame = 20; frame < 40; ++frame) {
    shown.playing.player.deliver(frame, shown.playing.source.fingerprint(), newPicture(frame));
  }
  const auto after = colors();
  EXPECT_EQ(after[0], before[0]);
  EXPECT_NE(after[1], before[1]);
  EXPECT_EQ(after[2], before[2]);
  EXPECT_EQ(host::memoryText(std::uint64_t{1288490189}, std::uint64_t{6} << 30), QLocale().toString(1.2) + " of 6 GB");
}
