// SPDX-License-Identifier: BSD-3-Clause
#include "Host/States/StateFile.h"
#include "Host/States/StatePrinting.h"
#include "Host/Texts/GradientText.h"
#include "Host/Texts/LevelsText.h"
#include "Ports/VRTStateKeys.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

// Gradients and levels as text: what they mean, the way there and back, and what is said of texts that mean nothing.

namespace {

using host::StateKind;

std::optional<host::StateFile> read(const std::string& text, std::string* reason = nullptr,
                                    std::optional<StateKind> kind = std::nullopt) {
  return host::stateFileFromBytes({text.begin(), text.end()}, reason, kind);
}

// Any finite number: simple ones, small and large ones, all bit patterns.
double someNumber(std::mt19937_64& random) {
  switch (random() % 6) {
    case 0:
      return static_cast<double>(random() % 101) / 100;
    case 1:
      return static_cast<double>(random() % 256) / 255;
    case 2:
      return random() % 2 == 0 ? 0.0 : -0.0;
    case 3:
      return std::uniform_real_distribution<double>(-2, 2)(random);
    default:
      break;
  }
  double number = NAN;
  while (!std::isfinite(number)) number = std::bit_cast<double>(random());
  return number;
}

host::GradientStops someStops(std::mt19937_64& random) {
  const auto number = [&] { return someNumber(random); };
  const auto kind = [&] {
    return random() % 8 == 0 ? static_cast<std::int32_t>(random()) : static_cast<std::int32_t>(random() % 3);
  };
  host::GradientStops stops;
  for (std::size_t i = random() % 6; i > 0; --i) {
    stops.colors.push_back({number(), random() % 2 == 0 ? 0.5 : number(), kind(), {number(), number(), number()}});
  }
  for (std::size_t i = random() % 4; i > 0; --i) {
    stops.opacities.push_back({number(), random() % 2 == 0 ? 0.5 : number(), kind(), {number()}});
  }
  if (random() % 3 == 0) stops.opacities = {host::kOpaque};
  return stops;
}

}  // namespace

TEST(ParameterTexts, GradientsComeBackToTheLastBit) {
  std::mt19937_64 random(7);
  for (int round = 0; round < 3000; ++round) {
    const PropertyList state = host::stateOfStops(someStops(random));
    host::Notes notes;
    std::string reason;
    const auto text = host::textOfParameter(StateKind::Gradient, state, host::TextFormat::Text, notes, &reason);
    ASSERT_TRUE(text) << reason;
    const auto file = read(*text, &reason);
    ASSERT_TRUE(file) << reason << "\n" << *text;
    ASSERT_EQ(file->state, state) << *text;
    const auto json = read(host::stateAsJson(*file), &reason);
    ASSERT_TRUE(json) << reason;
    ASSERT_EQ(json->state, state) << host::stateAsJson(*file);
  }
}

TEST(ParameterTexts, LevelsComeBackToTheLastBit) {
  using namespace VRTStateKeys;
  std::mt19937_64 random(8);
  std::uniform_real_distribution<double> unit(0, 1);
  for (int round = 0; round < 500; ++round) {
    PropertyList state = host::defaultLevels();
    for (std::size_t i = random() % 9; i > 0; --i) {
      const auto value = static_cast<LevelsValue>(random() % kLevelsValues.size());
      const double number = random() % 5 == 0 ? -0.0 : unit(random) * (value == kGamma ? 5 : 1);
      state.set(levelsKey(value, random() % kLevelsChannels.size()), PropertyList::real(number));
    }
    state.set(kSelectedChannel, PropertyList::integer(static_cast<int>(random() % 5)));
    std::string reason;
    const auto text = host::textOfLevels(state, &reason);
    ASSERT_TRUE(text) << reason;
    const auto file = read(*text, &reason);
    ASSERT_TRUE(file) << reason << "\n" << *text;
    ASSERT_EQ(file->kind, StateKind::Levels);
    ASSERT_EQ(file->state, state) << *text;
    ASSERT_EQ(read(host::stateAsJson(*file))->state, state);
  }
}

// What is written in one way and printed in the one way.
TEST(ParameterTexts, MeanWhatTheySay) {
  const std::pair<const char*, const char*> gradients[] = {
      {"black,white", "#000000 0%, #ffffff 100%"},
      {"#102040 0%, #ff8800 smooth 50%, white 100%", "#102040 0%, #ff8800 smooth 50%, #ffffff 100%"},
      {"  Red\n,\tBLUE 0.25 , rgb(0 50% 255) , lime Middle 30% SMOOTH /* green */ 80%, #abc\n",
       "#ff0000 0%, #0000ff 25%, color(srgb 0 0.5 1) 52.5%, #00ff00 smooth 80% middle 30%, #aabbcc 100%"},
      {"hsl(120 100% 50%), hsl(0.5turn, 100, 25), hsla(-90deg 50% 50% / 1)",
       "#00ff00 0%, color(srgb 0 0.5 0.5) 50%, color(srgb 0.5 0.25 0.75) 100%, opacity 100% 0%, opacity 100% 50%, "
       "opacity 100% 100%"},
      {"#f008, #0f0 constant",
       "#ff0000 0%, #00ff00 constant 100%, opacity 53.33333333333333% 0%, opacity 100% constant 100%"},
      {"red, opacity .25 smooth, opacity 75% 50%, opacity 0",
       "#ff0000 0%, opacity 25% smooth 0%, opacity 75% 50%, opacity 0% 100%"},
      {"red 120%, opacity 1", "#ff0000 120%, opacity 100% 0%"},
      {"none", "none"},
      {"color(srgb 2 -0.5 1e-3) interpolation(-7) 1e2%, opacity none",
       "color(srgb 2 -0.5 0.001) interpolation(-7) 100%, opacity none"},
  };
  for (const auto& [from, to] : gradients) {
    host::Notes notes;
    EXPECT_EQ(host::textOfGradient(host::gradientOfText(from, notes)), to) << from;
    EXPECT_TRUE(notes.empty()) << from;
  }
  host::Notes notes;
  host::gradientOfText("red 0, red 50%, blue 50%", notes);
  EXPECT_EQ(notes, host::Notes{"of the colors at 50% only the last counts; \"constant\" before it makes a hard edge"});

  const std::pair<const char*, const char*> levels[] = {
      {"gamma=1.2, red.blackIn=0.1", "gamma=1.2, red.blackIn=0.1"},
      {"RGB . Black In = 10%,GAMMABLUE=2, selected channel = Alpha",
       "blackIn=0.1, blue.gamma=2, selectedChannel=alpha"},
      {"green.whiteout=.5,green.white out=1, blackInRGB=1", "blackIn=1"},
      {"gamma=1", "selectedChannel=rgb"},
  };
  for (const auto& [from, to] : levels) EXPECT_EQ(host::textOfLevels(host::levelsOfText(from), nullptr), to) << from;
  std::string reason;
  PropertyList wide = host::defaultLevels();
  wide.set("whiteInRed", PropertyList::real(1.5));
  EXPECT_FALSE(host::textOfLevels(wide, &reason));
  EXPECT_EQ(reason, "whiteInRed is 1.5, beyond 0 to 1");
}

namespace {

struct BadText {
  const char* text;
  const char* reason;  // how it begins
};

class BadTexts : public testing::TestWithParam<BadText> {};

}  // namespace

TEST_P(BadTexts, AreRefusedWithTheirPlace) {
  std::string reason;
  EXPECT_FALSE(read(GetParam().text, &reason));
  EXPECT_TRUE(reason.starts_with(GetParam().reason)) << GetParam().text << "\n" << reason;
}

INSTANTIATE_TEST_SUITE_P(
    Host, BadTexts,
    testing::Values(
        BadText{"red, blu",
                "line 1, column 6: expected a color (#rrggbb, a name of CSS, rgb(), hsl() or color(srgb r g b)), "
                "\"opacity\" or \"none\", not \"blu\"; did you mean \"blue\""},
        BadText{"red,\n  #12345", "line 2, column 3: expected #rgb, #rgba, #rrggbb or #rrggbbaa, not \"#12345\""},
        BadText{"red 50", "line 1, column 5: expected a position; numbers beyond 0 to 1 need a %"},
        BadText{"red 20px", "line 1, column 5: expected a position, without the unit \"px\""},
        BadText{"red 1e999%", "line 1, column 5: \"1e999\" is beyond what a number holds"},
        BadText{"red 10% 20%", "line 1, column 9: a second position for one stop"},
        BadText{"red smooth linear", "line 1, column 12: a second interpolation for one stop"},
        BadText{"red sideways",
                "line 1, column 5: expected a position, \"constant\", \"linear\", \"smooth\", \"middle\" or \",\", "
                "not \"sideways\""},
        BadText{"red,", "line 1, column 5: expected a color"},
        BadText{"red blue", "line 1, column 5: expected a position"},
        BadText{"opacity 1", "line 1, column 10: there is no color"},
        BadText{"#f008, opacity 1", "line 1, column 8: colors with an alpha beside stops of the opacity"},
        BadText{"red, none", "line 1, column 6: \"none\" beside other stops"},
        BadText{"rgb(300 0 0)", "line 1, column 5: expected 0 to 255 or 0% to 100%"},
        BadText{"rgb(1, 2 3)", "line 1, column 10: expected \",\", not \"3\""},
        BadText{"red /* to", "line 1, column 5: a comment without an end"},
        BadText{"\xC3\xA4, red", "line 1, column 1: expected a color"},
        BadText{"red, \xC3\xA4", "line 1, column 6: expected a color"},
        BadText{"gamma=6", "line 1, column 7: gammaRGB: expected a gamma of 0 to 5"},
        BadText{"gamma=50%", "line 1, column 7: gammaRGB: expected a gamma of 0 to 5"},
        BadText{"red.blackIn=1.5", "line 1, column 13: blackInRed: expected a number of 0 to 1"},
        BadText{"gamma=1, pink.gamma=2",
                "line 1, column 10: no value of levels is called \"pink.gamma\"; there are blackIn, whiteIn"},
        BadText{"gamma=1, gamma", "line 1, column 10: expected name=value"},
        BadText{"gamma=1 2", "line 1, column 9: expected \",\", not \"2\""},
        BadText{"linear-gradient(red 20px, blue)", "line 1, column 21: expected a position in percent, not in \"px\""},
        BadText{"linear-gradient(20%, red)", "line 1, column 17: expected an angle in deg"},
        BadText{"linear-gradient(red, 20%, 30%, blue)", "line 1, column 22: a position without a color"},
        BadText{"linear-gradient(in oklab, red, blue)", "line 1, column 20: expected \"srgb\""},
        BadText{"linear-gradient(red)", "line 1, column 21: expected a second color"},
        BadText{"radial-gradient(red, blue)", "line 1, column 1: expected linear-gradient"},
        BadText{"-webkit-linear-gradient(left, red, blue)", "line 1, column 1: expected linear-gradient"},
        BadText{"linear-gradient(red, blue) url(a)", "line 1, column 28: expected the end of the text"},
        BadText{"GIMP Gradient\nName: x\n1\n0 0.5 1 0 0 0 1 1 1 1 1 6 0\n",
                "line 4, column 25: expected a blending of 0 to 5, not \"6\""},
        BadText{"GIMP Gradient\nName: x\n2\n0 0.2 0.5 0 0 0 1 1 1 1 1 0 0 0 0\n",
                "line 4, column 34: expected another segment, but the text ends"},
        BadText{"GIMP Gradient\n1\n0 0.7 0.5 0 0 0 1 1 1 1 1 0 0\n",
                "line 3, column 1: left end, middle and right end"},
        BadText{"GIMP Gradient\n2\n0 .2 .5 0 0 0 1 1 1 1 1 0 0\n.6 .7 1 0 0 0 1 1 1 1 1 0 0\n",
                "line 4, column 1: the segment does not begin"},
        BadText{"GIMP Gradient\n1\n0 0.5 1 0 0 2 1 1 1 1 1 0 0\n", "line 3, column 13: expected a component of 0 to 1"},
        BadText{"0 0 0 0 1 255 255\n", "line 1, column 1: expected a slice of 4 or 8 fields"},
        BadText{"0 0 0 0 1 9 9 9\n2 0 0 0 3 9 9 9\n", "line 2, column 1: the slice does not begin"},
        BadText{"1 0 0 0 0 9 9 9\n", "line 1, column 9: the slice does not end above"},
        BadText{"0 1/2/x 1 black\n", "line 1, column 7: expected a component of a color, not \"x\""},
        BadText{"0 0 0 0 1 9 999 9\n", "line 1, column 13: expected a component of 0 to 255"},
        BadText{"# COLOR_MODEL = CMYK\n0 0 1 255\n", "line 1, column 1: the color model \"cmyk\""},
        BadText{"<svg>\n <linearGradient>\n  <stop offset='x'/>\n </linearGradient>\n</svg>",
                "line 3, column 3: offset: expected"},
        BadText{"<svg><linearGradient id='a' href='#b'/>\n<linearGradient id='b' href='#a'/></svg>",
                "line 1, column 6: its href leads in a circle"},
        BadText{"<svg><linearGradient href='#c'/></svg>", "line 1, column 6: its href leads to \"#c\""},
        BadText{"<svg><linearGradient><stop class='a'/></linearGradient></svg>",
                "line 1, column 22: a stop whose color a style sheet"},
        BadText{"<svg>\n<linearGradient>", "line 2, column 17: no XML: "},
        BadText{"<svg></svg>", "line 1, column 12: there is no linearGradient"},
        BadText{"{\"kind\": \"gradient\", \"state\": {\"rgbSamples\": [1, 2}}",
                "line 1, column 51: expected \"]\", not \"}}\""},
        BadText{"{\"rgbSamples\": [1, 2]}", "\"rgbSamples\" holds 2 numbers"},
        BadText{"{\"rgbSamples\": [null]}", "line 1, column 17: expected a value"},
        BadText{"{\"a\": \"\\ud800\"}", "line 1, column 8: an unknown escape"}));

// A million stops are refused, or read, in time that grows with the text.
TEST(ParameterTexts, AreBounded) {
  const auto repeated = [](std::string before, const std::string& part, std::size_t count, const std::string& behind) {
    for (std::size_t i = 0; i < count; ++i) before += part;
    return before + behind;
  };
  const std::size_t many = 1000000;
  const std::string texts[] = {
      repeated("", "red,", many, "red"),
      repeated("linear-gradient(", "red,", many, "red)"),
      repeated("<svg><linearGradient>", "<stop/>", many, "</linearGradient></svg>"),
      repeated("GIMP Gradient\n1000000\n", "0 .5 1 0 0 0 1 1 1 1 1 0 0\n", many, ""),
      repeated("0 0 1 0\n", "1 0 2 0\n", many, ""),
      repeated("", "[", many, ""),
      repeated("{\"a\":", "[", many, "}"),
      repeated("", "gamma=1,", many, "gamm=1"),
      repeated("red /*", "*", many, ""),
      std::string(many, 'x'),
      repeated("red ", "9", many, "%,"),
  };
  for (const std::string& text : texts) {
    std::string reason;
    EXPECT_FALSE(read(text, &reason)) << text.substr(0, 60);
    EXPECT_LT(reason.size(), 400u);
  }
}
