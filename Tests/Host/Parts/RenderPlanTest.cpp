// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/ClipInfo.h"
#include "Host/Clips/TimeCodes.h"
#include "Host/Messages/Failure.h"
#include "Host/Rendering/ClipPlan.h"
#include "Host/Rendering/FrameTimes.h"
#include "Host/Rendering/SequencePlan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

namespace host {
namespace {

using Numbers = std::vector<std::uint32_t>;

ClipInfo evenClip(std::size_t frames, Rational rate) {
  ClipInfo clip;
  clip.rate = rate;
  clip.timeBase = unitOfRate(rate);
  for (std::size_t i = 0; i < frames; ++i) clip.times.push_back(100 + static_cast<std::int64_t>(i));
  clip.end = 100 + static_cast<std::int64_t>(frames);
  return clip;
}

// In milliseconds.
ClipInfo unevenClip(std::vector<std::int64_t> times, std::int64_t end) {
  ClipInfo clip;
  clip.rate = {25, 1};
  clip.timeBase = {1, 1000};
  clip.times = std::move(times);
  clip.end = end;
  clip.isUneven = true;
  return clip;
}

PlayedInput playing(const ClipInfo& clip) {
  return {"clip", &clip, std::nullopt};
}

Numbers sourcesOf(const RenderPlan& plan, std::size_t input) {
  Numbers result;
  for (std::uint64_t i = 0; i < plan.count(); ++i) result.push_back(plan.frame(i).sources[input]);
  return result;
}

std::vector<std::int64_t> shownIn(const RenderPlan& plan) {
  std::vector<std::int64_t> result;
  for (std::uint64_t i = 0; i < plan.count(); ++i) result.push_back(plan.frame(i).shown);
  result.push_back(plan.end());
  return result;
}

TEST(ClipPlan, FramesComeAsTheyAre) {
  const ClipInfo clip = unevenClip({40, 80, 200, 210}, 300);
  const ClipPlan plan({playing(clip)}, {});
  EXPECT_EQ(sourcesOf(plan, 0), (Numbers{0, 1, 2, 3}));
  EXPECT_EQ(shownIn(plan), (std::vector<std::int64_t>{0, 40, 160, 170, 260}));
  EXPECT_DOUBLE_EQ(plan.frame(2).time, 0.16);
}

TEST(ClipPlan, FpsTakesTheNearestFrameAndKeepsTheDuration) {
  const ClipInfo slow = evenClip(5, {10, 1});
  ClipWishes wishes;
  wishes.fps = Rational{25, 1};
  const ClipPlan faster({playing(slow)}, wishes);
  EXPECT_EQ(sourcesOf(faster, 0), (Numbers{0, 0, 1, 1, 2, 2, 2, 3, 3, 4, 4, 4, 4}));
  wishes.fps = Rational{4, 1};  // 0, 0.25 between two, 0.5 after the end
  EXPECT_EQ(sourcesOf(ClipPlan({playing(slow)}, wishes), 0), (Numbers{0, 2}));
  wishes.isRetimed = true;
  const ClipPlan retimed({playing(slow)}, wishes);
  EXPECT_EQ(sourcesOf(retimed, 0), (Numbers{0, 1, 2, 3, 4}));
  EXPECT_EQ(retimed.frame(4).time, 1);
}

TEST(ClipPlan, ShorterInputsHoldLoopOrEnd) {
  const ClipInfo clip = evenClip(4, {25, 1});
  const PlayedInput sequence{"s", nullptr, FrameRange{7, 12}};
  const PlayedInput still{"still", nullptr, std::nullopt};
  ClipWishes wishes;
  const ClipPlan held({still, playing(clip), sequence}, wishes);
  EXPECT_EQ(sourcesOf(held, 1), (Numbers{0, 1, 2, 3, 3, 3}));
  EXPECT_EQ(sourcesOf(held, 2), (Numbers{7, 8, 9, 10, 11, 12}));
  EXPECT_EQ(sourcesOf(held, 0), (Numbers(6, 0)));
  wishes.whenShort = WhenShort::Loop;
  EXPECT_EQ(sourcesOf(ClipPlan({playing(clip), sequence}, wishes), 0), (Numbers{0, 1, 2, 3, 0, 1}));
  wishes.whenShort = WhenShort::End;
  EXPECT_EQ(sourcesOf(ClipPlan({playing(clip), sequence}, wishes), 1), (Numbers{7, 8, 9, 10}));
  const ClipInfo brief = evenClip(2, {25, 1});
  EXPECT_EQ(sourcesOf(ClipPlan({playing(clip), playing(brief)}, wishes), 0), (Numbers{0, 1}));
}

TEST(ClipPlan, LoopsMeetTheirFirstFrameAfterManyTurns) {
  const ClipInfo longer = evenClip(3000, {30000, 1001});
  const ClipInfo loop = evenClip(7, {30000, 1001});
  ClipWishes wishes;
  wishes.whenShort = WhenShort::Loop;
  const Numbers sources = sourcesOf(ClipPlan({playing(longer), playing(loop)}, wishes), 1);
  for (std::size_t i = 0; i < sources.size(); ++i) ASSERT_EQ(sources[i], i % 7) << i;
}

TEST(ClipPlan, PartsCountFromTheWhole) {
  const ClipInfo clip = evenClip(100, {25, 1});
  ClipWishes wishes;
  wishes.start = 1;
  wishes.duration = 0.2;
  const ClipPlan timed({playing(clip)}, wishes);
  EXPECT_EQ(sourcesOf(timed, 0), (Numbers{25, 26, 27, 28, 29}));
  EXPECT_EQ(timed.frame(0).number, 25u);
  EXPECT_EQ(timed.frame(0).time, 0);
  EXPECT_NEAR(timed.startSeconds(), 1, 1e-9);
  EXPECT_NEAR(timed.durationSeconds(), 0.2, 1e-9);
  wishes = {.kind = EffectKind::Transition, .frames = FrameRange{10, 12}};
  const ClipPlan numbered({playing(clip)}, wishes);
  EXPECT_EQ(sourcesOf(numbered, 0), (Numbers{10, 11, 12}));
  EXPECT_EQ(numbered.frame(1).time, 0.5);
  for (const ClipWishes& empty :
       {ClipWishes{.start = 4}, ClipWishes{.duration = 0}, ClipWishes{.frames = FrameRange{99, 100}}}) {
    EXPECT_THROW(ClipPlan({playing(clip)}, empty), Failure);
  }
}

TEST(ClipPlan, WildTimesAreRefused) {
  const ClipInfo even = evenClip(4, {25, 1});
  const std::int64_t wild = std::int64_t{1} << 50;
  const ClipInfo clip = unevenClip({0, 40, wild}, wild + 40);
  const auto refusal = [](const std::vector<PlayedInput>& inputs, const ClipWishes& wishes) {
    try {
      const ClipPlan plan(inputs, wishes);
      return std::to_string(plan.count());
    } catch (const Failure& failure) {
      return std::string(failure.what());
    }
  };
  const PlayedInput far{"far.mkv", &clip, std::nullopt};
  const std::string said = "cannot render far.mkv: it lasts 1.1259e+12 s, which are ";
  EXPECT_EQ(refusal({far}, {.fps = Rational{25, 1}}), said + "2.81475e+13 frames; a run has at most 33554432");
  EXPECT_EQ(refusal({playing(even), far}, {}).rfind(said, 0), 0u);
  EXPECT_EQ(refusal({far}, {}), "3");
}

TEST(SequencePlan, SourcesHoldAndLoopByNumber) {
  const FrameRange frames{1, 6};
  const std::vector<std::optional<FrameRange>> sources{FrameRange{1, 6}, FrameRange{2, 4}, std::nullopt};
  EXPECT_EQ(sourcesOf(SequencePlan(frames, sources, {}), 1), (Numbers{2, 2, 3, 4, 4, 4}));
  const SequencePlan looped(frames, sources, {.framesPerSecond = 10}, WhenShort::Loop);
  EXPECT_EQ(sourcesOf(looped, 1), (Numbers{2, 2, 3, 4, 2, 3}));
  EXPECT_EQ(sourcesOf(looped, 0), (Numbers{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(looped.frame(5).time, 0.5);
  const SequencePlan transition(frames, sources, {.kind = EffectKind::Transition});
  EXPECT_EQ(transition.frame(5).time, 1);
}

TEST(FrameTimes, RatesAndTimesAsPeopleWriteThem) {
  const struct {
    const char* text;
    std::optional<Rational> rate;
  } rates[] = {{"25", Rational{25, 1}},
               {"29.97", Rational{30000, 1001}},
               {"23.98", Rational{24000, 1001}},
               {"23.976", Rational{24000, 1001}},
               {"30000/1001", Rational{30000, 1001}},
               {"12.5", Rational{25, 2}},
               {"50/2", Rational{25, 1}},
               {"0", std::nullopt},
               {"-25", std::nullopt},
               {"25fps", std::nullopt},
               {"1/0", std::nullopt},
               {"", std::nullopt},
               {"1e3", std::nullopt},
               {"1.001", Rational{1001, 1000}},
               {"14.99", Rational{1499, 100}},
               {"14.985", Rational{15000, 1001}},
               {"59.94", Rational{60000, 1001}},
               {"119.88", Rational{120000, 1001}},
               {"24.5", Rational{49, 2}},
               {"0.003", Rational{3, 1000}},
               {"0.0009", std::nullopt},
               {"1/2000", std::nullopt},
               {"2000000", std::nullopt}};
  for (const auto& [text, rate] : rates) EXPECT_EQ(parsedFrameRate(text), rate) << text;
  const struct {
    const char* text;
    std::optional<double> seconds;
  } times[] = {{"12.5", 12.5},         {"1:02.5", 62.5},         {"1:00:00", 3600},         {"0", 0},
               {"1:60", std::nullopt}, {"1.5:00", std::nullopt}, {"1:0:0:0", std::nullopt}, {"-1", std::nullopt},
               {":5", std::nullopt}};
  for (const auto& [text, seconds] : times) EXPECT_EQ(parsedSeconds(text), seconds) << text;
}

TEST(TimeCodes, CountFramesWithDropsAndPairs) {
  const double ntsc = 30000.0 / 1001;
  const struct {
    const char* text;
    double rate;
    std::uint64_t frames;
    const char* later;
  } rows[] = {{"01:00:00:00", 25, 0, "01:00:00:00"},       {"01:00:00:20", 25, 5, "01:00:01:00"},
              {"23:59:59:24", 25, 1, "00:00:00:00"},       {"01:00:00:40", 50, 0, "01:00:00:40"},
              {"01:00:00:41", 50, 0, "01:00:00:41"},       {"01:00:00:41", 50, 9, "01:00:01:00"},
              {"00:00:59;29", ntsc, 1, "00:01:00;02"},     {"00:00:00;00", ntsc, 1800, "00:01:00;02"},
              {"00:09:59;29", ntsc, 1, "00:10:00;00"},     {"00:00:00;00", ntsc, 17981, "00:09:59;29"},
              {"00:00:00;00", ntsc, 17982, "00:10:00;00"}, {"00:00:00;00", ntsc, 107892, "01:00:00;00"},
              {"23:59:59;29", ntsc, 1, "00:00:00;00"},     {"00:00:59:29", ntsc, 1, "00:01:00:00"},
              {"00:00:59;59", 2 * ntsc, 1, "00:01:00;04"}};
  for (const auto& row : rows) {
    const auto code = packedTimeCode(row.text, row.rate);
    ASSERT_TRUE(code) << row.text;
    EXPECT_EQ(timeCodeText(*code, row.rate), row.text);
    const auto later = advancedTimeCode(*code, row.rate, row.frames);
    ASSERT_TRUE(later) << row.text;
    EXPECT_EQ(timeCodeText(*later, row.rate), row.later) << row.text << " and " << row.frames;
  }
}

}  // namespace
}  // namespace host
