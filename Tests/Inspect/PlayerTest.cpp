// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/Player.h"

#include "Host/Inspect/PlaybackBenchmark.h"
#include "Tests/Inspect/PlaybackFixture.h"

using host::Looping;
using host::PlaybackTimes;
using host::PlayMode;
using playback_test::fingerprintOf;
using playback_test::newPicture;
using playback_test::Playing;

namespace {

using Frames = std::vector<std::uint64_t>;

PlaybackTimes tenFrames() {
  return PlaybackTimes::even(10, {10, 1});  // a tenth of a second each
}

}  // namespace

TEST(Player, ShowsWhereItGoesAndReadsAheadFromThere) {
  Playing playing(tenFrames());
  EXPECT_EQ(playing.source.orders, (Frames{0, 1}));
  playing.player.goTo(7);
  EXPECT_EQ(playing.source.orders, (Frames{7, 8})) << "what was ordered before is dropped";
  playing.deliverAll();
  EXPECT_EQ(playing.takeShown(), (Frames{7}));
  EXPECT_EQ(playing.player.cache().spans(), (std::vector<host::FrameSpan>{{7, 9}})) << "to the out point";
  playing.player.goTo(8);
  EXPECT_EQ(playing.takeShown(), (Frames{8})) << "at once";
  playing.player.goTo(100);
  EXPECT_EQ(playing.takeShown(), (Frames{9}));
  playing.player.step(-3);
  EXPECT_EQ(playing.player.position(), 6u);
  playing.player.step(-100);
  EXPECT_EQ(playing.player.position(), 0u);

  playing.player.setReadsAhead(false);
  playing.player.goTo(3);
  EXPECT_EQ(playing.source.orders, (Frames{3}));
  playing.player.setReadsAhead(true);
  playing.player.setHeld(true);
  playing.player.goTo(4);
  EXPECT_EQ(playing.source.orders, (Frames{4})) << "a hand drags";
  playing.player.setHeld(false);
  EXPECT_EQ(playing.source.orders, (Frames{4, 5}));
}

TEST(Player, EveryFrameWaitsForEachAndKeepsToTheRate) {
  Playing playing(tenFrames());
  playing.deliverAll();
  playing.takeShown();
  playing.player.play();
  playing.wait(0.35);
  EXPECT_EQ(playing.takeShown(), (Frames{1, 2, 3}));
  playing.wait(0.7);
  EXPECT_EQ(playing.takeShown(), (Frames{4, 5, 6, 7, 8, 9, 0})) << "around";
  EXPECT_NEAR(playing.player.reachedRate(), 10, 1e-9);

  playing.player.emptyCache();
  playing.wait(1);
  EXPECT_TRUE(playing.takeShown().empty());
  EXPECT_EQ(playing.player.position(), 0u);
  EXPECT_EQ(playing.source.orders, (Frames{1, 2}));
  playing.player.deliver(2, playing.source.fingerprint(), newPicture(2));
  EXPECT_TRUE(playing.shown.empty());
  playing.deliverFirst();
  EXPECT_EQ(playing.shown, (Frames{1})) << "at once, as it is late";
  playing.wait(0.35);
  EXPECT_EQ(playing.takeShown(), (Frames{1, 2})) << "the next at its time";
  EXPECT_EQ(playing.player.dropped(), 0u);
}

TEST(Player, RealTimeDropsWhatIsNotThere) {
  Playing playing(tenFrames());
  playing.player.setReadsAhead(false);
  playing.player.setMode(PlayMode::RealTime);
  playing.deliverAll();
  for (const std::uint64_t frame : {1, 2, 5, 6, 9}) {
    playing.player.deliver(frame, playing.source.fingerprint(), newPicture(frame));
  }
  playing.takeShown();
  playing.player.play();
  playing.wait(0.95);
  EXPECT_EQ(playing.takeShown(), (Frames{1, 2, 5, 6, 9}));
  EXPECT_EQ(playing.player.dropped(), 4u);
  playing.wait(0.1);
  EXPECT_EQ(playing.takeShown(), (Frames{0}));
  EXPECT_EQ(playing.player.dropped(), 4u);

  // The playhead keeps going, and what comes late is shown if nothing later was.
  playing.player.emptyCache();
  playing.wait(0.4);
  EXPECT_EQ(playing.player.position(), 4u);
  playing.player.deliver(3, playing.source.fingerprint(), newPicture(3));
  EXPECT_EQ(playing.takeShown(), (Frames{3}));
  EXPECT_EQ(playing.player.dropped(), 6u);
  playing.player.deliver(2, playing.source.fingerprint(), newPicture(2));
  EXPECT_TRUE(playing.shown.empty());
  playing.player.deliver(4, playing.source.fingerprint(), newPicture(4));
  EXPECT_EQ(playing.takeShown(), (Frames{4}));
  EXPECT_EQ(playing.player.dropped(), 6u);

  // A timer that came late.
  for (std::uint64_t frame = 0; frame < 10; ++frame) {
    playing.player.deliver(frame, playing.source.fingerprint(), newPicture(frame));
  }
  playing.now += 0.3;
  playing.player.advance();
  EXPECT_EQ(playing.takeShown(), (Frames{7}));
  EXPECT_EQ(playing.player.dropped(), 8u);
  // A machine that slept.
  playing.now += 3600;
  playing.player.advance();
  EXPECT_EQ(playing.player.position(), 8u);
}

// A source that is too slow for the rate has its orders for frames that can still come in time.
TEST(Player, RealTimeOrdersAheadOfTheClock) {
  Playing playing(PlaybackTimes::even(1000, {10, 1}));
  playing.source.most = 1;
  playing.player.setMode(PlayMode::RealTime);
  playing.deliverFirst();
  playing.player.play();
  for (int i = 0; i < 40; ++i) {
    playing.wait(0.25);
    ASSERT_EQ(playing.source.orders.size(), 1u);
    playing.deliverFirst();
  }
  playing.wait(0.5);
  EXPECT_GE(playing.shown.size(), 36u) << "four in a second";
  EXPECT_EQ(playing.player.shownCount() + playing.player.dropped() + 1,
            static_cast<std::uint64_t>(playing.shown.back()) + 1);
}

TEST(Player, TransitionsPlayInTwoSeconds) {
  Playing playing(PlaybackTimes::transition({25, 1}));
  playing.source.most = 100;
  playing.deliverAll();
  EXPECT_EQ(playing.player.cache().count(), 51u);
  playing.takeShown();
  playing.player.setLooping(Looping::Off);
  playing.player.play();
  playing.wait(1.01);
  EXPECT_EQ(playing.player.position(), 500u);
  playing.wait(2);
  EXPECT_EQ(playing.shown.size(), 50u);
  EXPECT_EQ(playing.player.position(), 1000u);
  EXPECT_FALSE(playing.player.isPlaying());
  playing.player.play();
  EXPECT_EQ(playing.player.position(), 0u) << "from the end it begins anew";
}

TEST(Player, UnevenFramesAreShownAsLongAsTheyLast) {
  for (const PlayMode mode : {PlayMode::EveryFrame, PlayMode::RealTime}) {
    Playing playing(PlaybackTimes::uneven({0, 0.1, 0.5, 0.6}, 1.0, {4, 1}));
    playing.deliverAll();
    playing.player.setMode(mode);
    playing.takeShown();
    playing.player.play();
    std::vector<std::pair<std::uint64_t, int>> times;
    for (int i = 1; i <= 1150; ++i) {
      playing.now += 0.001;
      playing.player.advance();
      for (const std::uint64_t frame : playing.takeShown()) times.emplace_back(frame, i);
    }
    EXPECT_EQ(times, (std::vector<std::pair<std::uint64_t, int>>{{1, 100}, {2, 500}, {3, 600}, {0, 1000}, {1, 1100}}));
  }
}

TEST(Player, PlaysBetweenItsPoints) {
  Playing playing(tenFrames());
  playing.source.most = 10;
  playing.player.setInPoint(3);
  playing.player.setOutPoint(5);
  playing.player.setLooping(Looping::BackAndForth);
  playing.player.play();
  EXPECT_EQ(playing.player.position(), 3u) << "from outside to the in point";
  EXPECT_EQ(playing.source.orders, (Frames{3, 4, 5})) << "nothing beyond";
  playing.deliverAll();
  playing.wait(0.45);
  EXPECT_EQ(playing.takeShown(), (Frames{3, 4, 5, 4, 3}));
  playing.player.setLooping(Looping::Off);
  playing.player.play(true);
  playing.wait(0.5);
  EXPECT_EQ(playing.takeShown(), (Frames{5, 4, 3})) << "backward, once";
  EXPECT_FALSE(playing.player.isPlaying());

  // Where playing is not it goes on all the same.
  for (const PlayMode mode : {PlayMode::EveryFrame, PlayMode::RealTime}) {
    playing.player.setMode(mode);
    playing.player.setLooping(Looping::Around);
    playing.player.play();
    playing.player.emptyCache();
    playing.player.goTo(8);
    playing.takeShown();
    for (int i = 0; i < 3; ++i) {
      playing.deliverAll();
      playing.wait(0.1);
    }
    EXPECT_EQ(playing.takeShown(), (Frames{8, 3, 4, 5}));
  }

  playing.player.setInPoint(7);
  EXPECT_EQ(playing.player.outPoint(), 9u);
  playing.player.setOutPoint(2);
  EXPECT_EQ(playing.player.inPoint(), 0u);
  playing.player.clearRange();
  EXPECT_FALSE(playing.player.hasRange());
}

TEST(Player, FailuresAreSaidAndStopNothingForEver) {
  Playing playing(tenFrames());
  playing.source.most = 1;
  playing.deliverFirst();
  playing.failFirst();  // frame 1, ahead
  playing.deliverAll();
  EXPECT_TRUE(playing.remarks.empty()) << "nobody was there yet";
  playing.player.goTo(1);
  EXPECT_EQ(playing.source.orders.front(), 1u) << "once more, as somebody wants it";
  playing.failFirst();
  EXPECT_EQ(playing.remarks, (std::vector<std::string>{"Frame 1: broken"}));
  playing.deliverAll();

  playing.remarks.clear();
  playing.player.goTo(0);
  playing.player.play();
  ASSERT_EQ(playing.source.orders, (Frames{1})) << "playing tries again";
  playing.failFirst();
  playing.deliverAll();
  playing.wait(0.5);
  EXPECT_FALSE(playing.player.isPlaying());
  EXPECT_EQ(playing.player.position(), 1u);
  EXPECT_EQ(playing.remarks, (std::vector<std::string>{"Frame 1: broken"}));

  playing.remarks.clear();
  playing.player.setMode(PlayMode::RealTime);
  playing.player.goTo(0);
  playing.takeShown();
  playing.player.play();
  while (!playing.source.orders.empty()) playing.failFirst();
  playing.wait(0.35);
  EXPECT_EQ(playing.takeShown(), (Frames{2, 3}));
  EXPECT_EQ(playing.player.dropped(), 1u);
  EXPECT_EQ(playing.remarks.size(), 1u);
}

TEST(Player, ParametersChangeUnderway) {
  Playing playing(tenFrames());
  playing.deliverAll();
  playing.takeShown();
  const auto before = playing.lastPicture;
  playing.source.parameters = "second";
  playing.player.parametersChanged();
  EXPECT_EQ(playing.source.orders, (Frames{0, 1}));
  playing.player.deliver(0, fingerprintOf("first"), newPicture(0));
  EXPECT_TRUE(playing.shown.empty()) << "of former ones";
  EXPECT_EQ(playing.player.cache().count(), 0u);
  playing.deliverFirst();
  EXPECT_EQ(playing.takeShown(), (Frames{0}));

  playing.source.parameters = "unsaid";
  playing.player.deliver(0, fingerprintOf("unsaid"), newPicture(0));
  EXPECT_EQ(playing.takeShown(), (Frames{0})) << "nobody has said that they changed";
  EXPECT_EQ(playing.source.orders, (Frames{1, 2}));

  playing.player.play();
  playing.source.parameters = "first";
  playing.player.parametersChanged();
  EXPECT_TRUE(playing.source.orders.empty()) << "all of them are there";
  playing.wait(0.25);
  EXPECT_EQ(playing.takeShown(), (Frames{1, 2}));

  playing.source.parameters = "third";
  playing.player.parametersChanged();
  playing.wait(0.3);
  EXPECT_TRUE(playing.shown.empty());
  playing.player.deliver(3, fingerprintOf("second"), newPicture(3));
  EXPECT_EQ(playing.takeShown(), (Frames{3})) << "playing goes on with what there is";
  EXPECT_EQ(playing.player.cache().count(), 0u);
}

TEST(Player, ReadsNoFurtherAheadThanTheBudgetReaches) {
  Playing playing(PlaybackTimes::even(100, {10, 1}));
  playing.source.most = 3;
  const std::uint64_t each = newPicture(0)->result->allocSize;
  playing.player.setBudget(20 * each);
  int delivered = 0;
  while (!playing.source.orders.empty() && ++delivered < 1000) playing.deliverFirst();
  EXPECT_LE(delivered, 23);
  EXPECT_EQ(playing.player.cache().spans(), (std::vector<host::FrameSpan>{{0, 19}}));

  // The window goes along, and each frame is fetched once a round.
  playing.player.play();
  delivered = 0;
  for (int i = 0; i < 100; ++i) {
    playing.wait(0.1);
    while (!playing.source.orders.empty() && ++delivered < 1000) playing.deliverFirst();
  }
  EXPECT_EQ(playing.shown.size(), 101u);
  EXPECT_NEAR(delivered, 100, 4);

  // Even where not one fits.
  playing.player.setBudget(1);
  playing.takeShown();
  for (int i = 0; i < 20; ++i) {
    playing.wait(0.1);
    for (int j = 0; j < 3 && !playing.source.orders.empty(); ++j) playing.deliverFirst();
  }
  EXPECT_NEAR(static_cast<double>(playing.shown.size()), 20, 1);
}

TEST(Player, ScrubbingShowsFramesAsTheyComeAndGoesOnAfterwards) {
  Playing playing(tenFrames());
  playing.deliverAll();
  playing.player.emptyCache();
  playing.deliverFirst();
  playing.player.play();
  playing.player.beginScrubbing();
  EXPECT_FALSE(playing.player.isPlaying());
  playing.takeShown();
  playing.player.goTo(5);
  playing.player.goTo(8);
  EXPECT_EQ(playing.source.orders, (Frames{8}));
  playing.player.deliver(5, playing.source.fingerprint(), newPicture(5));
  EXPECT_EQ(playing.takeShown(), (Frames{5}));
  playing.deliverFirst();
  EXPECT_EQ(playing.takeShown(), (Frames{8}));
  playing.player.endScrubbing();
  EXPECT_TRUE(playing.player.isPlaying());
  EXPECT_EQ(playing.source.orders, (Frames{9, 1}));
}

TEST(PlaybackBenchmark, CountsTheFramesOfBothPasses) {
  // Frames come once the events that wait were handled; the last one breaks.
  struct Source : playback_test::FakeSource {
    void order(std::uint64_t frame) override {
      QTimer::singleShot(0, &context, [this, frame] {
        ++rendered;
        if (frame == 19) return player->deliverFailure(frame, fingerprint(), "broken");
        player->deliver(frame, fingerprint(), newPicture(frame));
      });
    }
    QObject context;
    host::Player* player = nullptr;
    int rendered = 0;
  };
  Source source;
  host::PlaybackBenchmark benchmark(source, PlaybackTimes::even(20, {1, 1}));
  source.player = &benchmark.player();
  const auto result = benchmark.run(15, 60);
  EXPECT_EQ(result.failure, "");
  EXPECT_GE(result.first.frames, 15u);
  EXPECT_LE(result.first.frames, 16u);
  ASSERT_TRUE(result.cached);
  EXPECT_GE(result.cached->frames, 14u);
  const int rendered = source.rendered;
  EXPECT_LE(rendered, 18) << "nothing twice but the first";
  EXPECT_LT(result.cached->seconds, 10) << "not a second for each frame";

  const auto broken = benchmark.run(20, 60);
  EXPECT_EQ(broken.failure, "Frame 19: broken");
  EXPECT_FALSE(broken.cached);
}
