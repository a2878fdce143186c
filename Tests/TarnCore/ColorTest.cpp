// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCColor.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace {

using C = VortoColor;
using enum VortoColor::Type;
using Four = std::array<float, 4>;

constexpr auto none = static_cast<C::Type>(7);
constexpr C::Type allTypes[] = {HSL, HSV, HWB, RGB, YIQ, YUV, CLU};

Four valuesOf(const C& c) {
  return {c.c1, c.c2, c.c3, c.alpha};
}

TEST(Color, Operations) {
  C self(0.5f, 0.25f, 0.125f, 1), red = C::RED, toNone = C::RED, ofNone(none, 0.3f, -2, 5, 0.5f);
  red.convertToHSL();
  toNone.convert(none);
  for (const C::Type to : allTypes) ofNone.convert(to);
  const std::pair<Four, Four> rows[] = {
      {valuesOf(C::YELLOW), {1, 1, 0, 1}},
      {valuesOf(C::CLEAR), {0, 0, 0, 0}},
      {valuesOf(C()), {0, 0, 0, 1}},
      {valuesOf(C(HSL, 1, 2, 3, 0.5f).add(1).mul(4).sub(2).div(2).div(0)), {3, 5, 7, 0.5f}},
      {valuesOf(C(1, 0, 0, 0.5f).mix(C(HSL, 0, 1, 1, 1), 0.25f)), {0.75f, 0.25f, 0.25f, 0.5f}},
      {valuesOf(self -= self), {0, 0, 0, 1}},
      {valuesOf(red), {0, 1, 0.5f, 1}},
      {valuesOf(toNone += 1.0f), {2, 1, 1, 1}},
      {valuesOf((((ofNone += 1.0f) /= 2.0f) += C::RED).clamp()), {0.3f, -2, 5, 0.5f}},
  };
  for (const auto& [actual, expected] : rows) EXPECT_EQ(actual, expected) << &actual - &rows[0].first;
  for (const C::Type type : {C::WHITE.type, C(0.1f, 0.2f, 0.3f, 0.4f).type}) EXPECT_EQ(type, RGB);
  EXPECT_EQ(C(CLU).type, CLU);
  EXPECT_EQ(red.getBlue(), 1) << "blue always equals the upper bound";
}

TEST(Color, ConvertsInPlaceThroughRGBAndKeepsAlpha) {
  for (const C::Type from : allTypes) {
    for (const C::Type to : allTypes) {
      C color(from, 0.3f, 0.4f, 0.5f, 0.125f);
      C throughRGB = color;
      throughRGB.convertToRGB();
      if (from != to) throughRGB.convert(to);
      color.convert(to);
      EXPECT_EQ(color.type, to);
      EXPECT_EQ(valuesOf(color), from == to ? (Four{0.3f, 0.4f, 0.5f, 0.125f}) : valuesOf(throughRGB)) << from << to;
    }
  }
}

TEST(Color, OperatorsWithANumberTouchTheLight) {
  const std::pair<C::Type, const char*> touched[] = {{HSL, "--x"}, {HSV, "--x"}, {HWB, "-x-"}, {RGB, "xxx"},
                                                     {YIQ, "xxx"}, {YUV, "xxx"}, {CLU, "x--"}, {none, "---"}};
  for (const auto& [type, which] : touched) {
    C color(type, 2, 4, 8, 1);
    ((((color += 4) -= 1) *= 2) /= 0) /= 4;
    Four expected = {2, 4, 8, 1};
    for (int i = 0; i < 3; ++i) {
      if (which[i] == 'x') expected[i] = (expected[i] + 3) / 2;
    }
    EXPECT_EQ(valuesOf(color), expected) << type;
  }
}

// Sums are made in the model of the first; HSV (120, 1, 1) is (120, 1, 0.5) in HSL and (120, 0, 0) in HWB, to which it
// comes by way of HSL. Hues do not wrap, and neither a gray's own hue nor what is added to a gray's changes.
TEST(Color, AddsAndSubtractsColors) {
  const struct {
    C color;
    char sign;
    C other;
    Four expected;
  } rows[] = {
      {C(0.1f, 0.2f, 0.3f, 0.5f), '+', C(HSV, 0, 1, 0.5f, 1), {0.6f, 0.2f, 0.3f, 0.5f}},
      {C(HSL, 40, 0.000009f, 0.5f, 1), '+', C(HSL, 100, 0.5f, 0.25f, 1), {40, 0.000009f, 0.75f, 1}},
      {C(HSV, 300, 0.5f, 0.5f, 1), '+', C(HSV, 100, 0.75f, 0.75f, 1), {400, 1.25f, 1.25f, 1}},
      {C(HWB, 40, 0.25f, 0.75f, 1), '+', C(HWB, 100, 0.125f, 0.5f, 1), {40, 0.375f, 1.25f, 1}},
      {C(HWB, 10, 0.25f, 0.25f, 1), '+', C(HSV, 120, 1, 1, 1), {130, 1.25f, 0.75f, 1}},
      {C(HWB, 10, 0.25f, 0.75f, 1), '+', C(HSV, 120, 1, 1, 1), {10, 1.25f, 1.25f, 1}},
      {C(HSL, 100, 0.5f, 0.5f, 0.5f), '-', C(HSL, 40, 0.25f, 0.125f, 1), {60, 0.25f, 0.375f, 0.5f}},
      {C(HSL, 60, 0.25f, 0.375f, 0.5f), '-', C(HSL, 40, 0, 0.125f, 1), {100, 0.25f, 0.25f, 0.5f}},
      {C(HWB, 100, 0.25f, 0.25f, 1), '-', C(HWB, 40, 0.25f, 0.75f, 1), {140, 0, -0.5f, 1}},
  };
  for (const auto& row : rows) {
    C color = row.color;
    row.sign == '+' ? color += row.other : color -= row.other;
    EXPECT_EQ(valuesOf(color), row.expected) << &row - rows;
  }
}

TEST(Color, ClampsByModel) {
  const std::pair<C, Four> cases[] = {
      {C(RGB, -1, 0.5f, 2, 7), {0, 0.5f, 1, 1}},
      {C(HSL, 725, 2, -1, -1), {5, 1, 0, 0}},
      {C(HSV, -30, -1, 2, 1), {0, 0, 1, 1}},
      {C(HWB, 400, 0.25f, 0.75f, 1), {0, 0.25f, 0.75f, 1}},
      {C(HWB, 400, -1, 0.5f, 1), {40, 0, 0.5f, 1}},
      {C(YIQ, 2, -1, 0.4f, 1), {1, -0.596f, 0.274f, 1}},
      {C(YUV, -1, 1, -1, 1), {0, 0.436f, -0.615f, 1}},
      {C(CLU, 2, 50, -50, 1), {1, 50, -50, 1}},
      {C(none, 9, 9, 9, 9), {9, 9, 9, 1}},
  };
  for (const auto& [in, out] : cases) {
    C color = in, inverted = in;
    EXPECT_EQ(valuesOf(color.clamp()), out) << in.type;
    EXPECT_EQ(valuesOf(inverted.invert()), (Four{1 - out[0], 1 - out[1], 1 - out[2], out[3]})) << in.type;
  }
}

// By == with its tolerance, strictly, and by colorCompare within 0.1, for which one component is enough.
TEST(Color, ComparesWithinATolerance) {
  const float nan = std::nanf(""), infinity = std::numeric_limits<float>::infinity();
  const struct {
    C a, b;
    bool equal, close;
  } rows[] = {
      {C::BLACK, C(0.000009f, 0, 0, 1), true, true},
      {C::BLACK, C(0.00001f, 0, 0, 1), false, true},
      {C::BLACK, C(0, 0, 0, 0.9999f), false, true},
      {C::RED, C(HSV, 0, 1, 1, 1), true, true},
      {C::BLACK, C(0, 0.5f, 0.5f, 0), false, true},
      {C::BLACK, C(0.5f, 0.5f, 0, 1), false, true},
      {C::BLACK, C(0.5f, 0.1f, 0.1f, 1), false, false},
      {C(nan, nan, nan, 1), C(nan, nan, nan, 1), false, false},
      {C(infinity, 0, 0, 1), C(infinity, 0, 0, 1), false, true},
  };
  for (const auto& [a, b, equal, close] : rows) {
    EXPECT_EQ(a == b, equal) << &a - &rows[0].a;
    EXPECT_EQ(a != b, !equal);
    EXPECT_EQ(a.colorCompare(b, 0.1f), close) << b.c1;
  }
  EXPECT_FALSE(C::BLACK.colorCompare(C::BLACK, 0));
  EXPECT_FALSE(C(nan, nan, nan, 1).colorCompare(C(nan, nan, nan, 1), infinity));
}

TEST(Color, NothingHangsOnWhatIsNoNumber) {
  const float infinity = std::numeric_limits<float>::infinity();
  for (int i = 0; i < 7 * 7 * 5 * 3; ++i) {
    const C::Type from = allTypes[i % 7], to = allTypes[i / 7 % 7];
    const float value = std::array{std::nanf(""), infinity, -infinity, 3e38f, -3e38f}[i / 49 % 5];
    float c[3] = {0.5f, 0.5f, 0.5f};
    c[i / 245] = value;
    C color(from, c[0], c[1], c[2], 0.5f);
    color.convert(to);
    color += C(to, value, value, value, value);
    color.clamp();
    EXPECT_EQ(color.alpha, 0.5f);
  }
}

}  // namespace
