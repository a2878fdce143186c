// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCColor.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

using Type = VortoColor::Type;
using Four = std::array<float, 4>;

Four valuesOf(const VortoColor& c) {
  return {c.c1, c.c2, c.c3, c.alpha};
}

constexpr auto none = static_cast<Type>(7);
constexpr Type allTypes[] = {VortoColor::HSL, VortoColor::HSV, VortoColor::HWB, VortoColor::RGB,
                             VortoColor::YIQ, VortoColor::YUV, VortoColor::CLU};

TEST(Color, ConstantsAndConstructors) {
  EXPECT_EQ(valuesOf(VortoColor::YELLOW), (Four{1, 1, 0, 1}));
  EXPECT_EQ(valuesOf(VortoColor::CLEAR), (Four{0, 0, 0, 0}));
  EXPECT_EQ(VortoColor::WHITE.type, VortoColor::RGB);
  EXPECT_EQ(valuesOf(VortoColor()), (Four{0, 0, 0, 1}));
  EXPECT_EQ(VortoColor(VortoColor::CLU).type, VortoColor::CLU);
  EXPECT_EQ(VortoColor(0.1f, 0.2f, 0.3f, 0.4f).type, VortoColor::RGB);
}

TEST(Color, ConvertsInPlaceThroughRGBAndKeepsAlpha) {
  for (const Type from : allTypes) {
    for (const Type to : allTypes) {
      VortoColor color(from, 0.3f, 0.4f, 0.5f, 0.125f);
      VortoColor throughRGB = color;
      throughRGB.convertToRGB();
      if (from != to) throughRGB.convert(to);
      color.convert(to);
      EXPECT_EQ(color.type, to);
      EXPECT_EQ(valuesOf(color), from == to ? (Four{0.3f, 0.4f, 0.5f, 0.125f}) : valuesOf(throughRGB)) << from << to;
    }
  }
  VortoColor red = VortoColor::RED;
  red.convertToHSL();
  EXPECT_EQ(valuesOf(red), (Four{0, 1, 0.5f, 1}));
  EXPECT_EQ(red.getBlue(), 1) << "blue always equals the upper bound";
  EXPECT_EQ(red.type, VortoColor::HSL);
}

TEST(Color, TypesThatAreNoneAreLeftAlone) {
  const Four values = {0.3f, -2, 5, 0.5f};
  VortoColor color(none, 0.3f, -2, 5, 0.5f);
  for (const Type to : allTypes) color.convert(to);
  color.convertToHWB();
  color += 1.0f;
  color /= 2.0f;
  color += VortoColor::RED;
  color.clamp();
  EXPECT_EQ(valuesOf(color), values);
  EXPECT_EQ(color.type, none);
  VortoColor red = VortoColor::RED;
  red.convert(none);
  EXPECT_TRUE(red.type == VortoColor::RGB && red.c1 == 1);
}

TEST(Color, PlainArithmeticTouchesAllThree) {
  VortoColor color(VortoColor::HSL, 1, 2, 3, 0.5f);
  color.add(1).mul(4).sub(2).div(2).div(0);
  EXPECT_EQ(valuesOf(color), (Four{3, 5, 7, 0.5f}));
}

TEST(Color, OperatorsWithANumberTouchTheLight) {
  const struct {
    Type type;
    Four expected;
  } cases[] = {{VortoColor::HSL, {2, 4, 10, 1}}, {VortoColor::HSV, {2, 4, 10, 1}},
               {VortoColor::HWB, {2, 7, 8, 1}},  {VortoColor::RGB, {4, 7, 10, 1}},
               {VortoColor::YIQ, {4, 7, 10, 1}}, {VortoColor::YUV, {4, 7, 10, 1}},
               {VortoColor::CLU, {4, 4, 8, 1}},  {none, {2, 4, 8, 1}}};
  for (const auto& [type, expected] : cases) {
    VortoColor color(type, 2, 4, 8, 1);
    color += 4;
    color -= 1;
    color *= 2;
    color /= 0;
    color /= 4;
    Four halved = {2, 4, 8, 1};  // (x + 3) / 2 where touched
    for (int i = 0; i < 3; ++i) {
      if (expected[i] != halved[i]) halved[i] = (halved[i] + 3) / 2;
    }
    EXPECT_EQ(valuesOf(color), halved) << type;
  }
}

TEST(Color, AddsColorsInItsOwnModel) {
  VortoColor rgb(0.1f, 0.2f, 0.3f, 0.5f);
  rgb += VortoColor(VortoColor::HSV, 0, 1, 0.5f, 1);
  EXPECT_EQ(valuesOf(rgb), (Four{0.6f, 0.2f, 0.3f, 0.5f}));

  VortoColor gray(VortoColor::HSL, 40, 0.000009f, 0.5f, 1);
  gray += VortoColor(VortoColor::HSL, 100, 0.5f, 0.25f, 1);
  EXPECT_EQ(valuesOf(gray), (Four{40, 0.000009f, 0.75f, 1}));
  VortoColor colored(VortoColor::HSV, 300, 0.5f, 0.5f, 1);
  colored += VortoColor(VortoColor::HSV, 100, 0.75f, 0.75f, 1);
  EXPECT_EQ(valuesOf(colored), (Four{400, 1.25f, 1.25f, 1})) << "nothing wraps";

  VortoColor whitened(VortoColor::HWB, 40, 0.25f, 0.75f, 1);
  whitened += VortoColor(VortoColor::HWB, 100, 0.125f, 0.5f, 1);
  EXPECT_EQ(valuesOf(whitened), (Four{40, 0.375f, 1.25f, 1}));
}

// HSV (120, 1, 1) is green; as HSL it is (120, 1, 0.5), as HWB (120, 0, 0).
TEST(Color, AddsHSVToHWBByWayOfHSL) {
  VortoColor color(VortoColor::HWB, 10, 0.25f, 0.25f, 1);
  color += VortoColor(VortoColor::HSV, 120, 1, 1, 1);
  EXPECT_EQ(valuesOf(color), (Four{130, 1.25f, 0.75f, 1}));
  VortoColor gray(VortoColor::HWB, 10, 0.25f, 0.75f, 1);
  gray += VortoColor(VortoColor::HSV, 120, 1, 1, 1);
  EXPECT_EQ(valuesOf(gray), (Four{10, 1.25f, 1.25f, 1}));
}

TEST(Color, SubtractsByAddingTheNegated) {
  VortoColor color(VortoColor::HSL, 100, 0.5f, 0.5f, 0.5f);
  color -= VortoColor(VortoColor::HSL, 40, 0.25f, 0.125f, 1);
  EXPECT_EQ(valuesOf(color), (Four{60, 0.25f, 0.375f, 0.5f}));
  color -= VortoColor(VortoColor::HSL, 40, 0, 0.125f, 1);
  EXPECT_EQ(valuesOf(color), (Four{100, 0.25f, 0.25f, 0.5f})) << "the hue of a gray is not negated";
  VortoColor hwb(VortoColor::HWB, 100, 0.25f, 0.25f, 1);
  hwb -= VortoColor(VortoColor::HWB, 40, 0.25f, 0.75f, 1);
  EXPECT_EQ(valuesOf(hwb), (Four{140, 0, -0.5f, 1}));
  VortoColor self(0.5f, 0.25f, 0.125f, 1);
  self -= self;
  EXPECT_EQ(valuesOf(self), (Four{0, 0, 0, 1}));
}

TEST(Color, MixesTheComponentsAsTheyStand) {
  VortoColor color(1, 0, 0.5f, 0.5f);
  color.mix(VortoColor(VortoColor::HSL, 0, 1, 0.5f, 1), 0.25f);
  EXPECT_EQ(valuesOf(color), (Four{0.75f, 0.25f, 0.5f, 0.5f}));
}

TEST(Color, ClampsByModel) {
  const struct {
    VortoColor in;
    Four out;
  } cases[] = {
      {{VortoColor::RGB, -1, 0.5f, 2, 7}, {0, 0.5f, 1, 1}},
      {{VortoColor::HSL, 725, 2, -1, -1}, {5, 1, 0, 0}},
      {{VortoColor::HSV, -30, -1, 2, 1}, {0, 0, 1, 1}},
      {{VortoColor::HWB, 400, 0.25f, 0.75f, 1}, {0, 0.25f, 0.75f, 1}},
      {{VortoColor::HWB, 400, -1, 0.5f, 1}, {40, 0, 0.5f, 1}},
      {{VortoColor::YIQ, 2, -1, 0.4f, 1}, {1, -0.596f, 0.274f, 1}},
      {{VortoColor::YUV, -1, 1, -1, 1}, {0, 0.436f, -0.615f, 1}},
      {{VortoColor::CLU, 2, 50, -50, 1}, {1, 50, -50, 1}},
      {{none, 9, 9, 9, 9}, {9, 9, 9, 1}},
  };
  for (const auto& [in, out] : cases) {
    VortoColor color = in;
    EXPECT_EQ(valuesOf(color.clamp()), out) << in.type;
    VortoColor inverted = in;
    EXPECT_EQ(valuesOf(inverted.invert()), (Four{1 - out[0], 1 - out[1], 1 - out[2], out[3]})) << in.type;
  }
}

TEST(Color, ComparesWithinATolerance) {
  const VortoColor black = VortoColor::BLACK;
  EXPECT_TRUE(black == VortoColor(0.000009f, 0, 0, 1));
  EXPECT_TRUE(black != VortoColor(0.00001f, 0, 0, 1)) << "strictly less";
  EXPECT_TRUE(black != VortoColor(0, 0, 0, 0.9999f));
  EXPECT_TRUE(VortoColor::RED == VortoColor(VortoColor::HSV, 0, 1, 1, 1));

  EXPECT_TRUE(black.colorCompare(VortoColor(0, 0.5f, 0.5f, 0), 0.1f)) << "one component is enough";
  EXPECT_TRUE(black.colorCompare(VortoColor(0.5f, 0.5f, 0, 1), 0.1f));
  EXPECT_FALSE(black.colorCompare(VortoColor(0.5f, 0.1f, 0.1f, 1), 0.1f));
  EXPECT_FALSE(black.colorCompare(black, 0));
}

TEST(Color, NaNIsNeverCloseAndNothingHangs) {
  const float nan = std::nanf("");
  const float infinity = std::numeric_limits<float>::infinity();
  const VortoColor bad(nan, nan, nan, 1);
  EXPECT_FALSE(bad == bad);
  EXPECT_FALSE(bad.colorCompare(bad, infinity));
  EXPECT_FALSE(VortoColor(infinity, 0, 0, 1) == VortoColor(infinity, 0, 0, 1));
  for (const Type from : allTypes) {
    for (const Type to : allTypes) {
      for (const float value : {nan, infinity, -infinity, 3e38f, -3e38f}) {
        for (int at = 0; at < 3; ++at) {
          float c[3] = {0.5f, 0.5f, 0.5f};
          c[at] = value;
          VortoColor color(from, c[0], c[1], c[2], 0.5f);
          color.convert(to);
          color += VortoColor(to, value, value, value, value);
          color.clamp();
          EXPECT_EQ(color.alpha, 0.5f);
        }
      }
    }
  }
}

}  // namespace
