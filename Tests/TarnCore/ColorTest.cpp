// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCColor.h"

#include "Tests/Support/Tables.h"

namespace {

using C = VortoColor;
using enum VortoColor::Type;
using Four = std::array<float, 4>;

constexpr auto none = static_cast<C::Type>(7);
constexpr C::Type allTypes[] = {HSL, HSV, HWB, RGB, YIQ, YUV, CLU};

Four valuesOf(const C& c) {
  return {c.c1, c.c2, c.c3, c.alpha};
}

C colorOf(const std::string& text) {
  std::istringstream words(text);
  std::string model;
  words >> model;
  C color(none);
  const std::string models = "HSLHSVHWBRGBYIQYUVCLU";
  if (const std::size_t at = models.find(model); at < models.size()) color.type = allTypes[at / 3];
  for (float* component : {&color.c1, &color.c2, &color.c3, &color.alpha}) {
    std::string number;
    words >> number;
    *component = std::strtof(number.c_str(), nullptr);
  }
  return color;
}

TEST(Color, OperationsOnTheModels) {
  for (const Row& row : rowsOf("Colors.txt")) {
    SCOPED_TRACE(row[0] + " " + row[1] + ", " + row[2]);
    C color = colorOf(row[1]);
    const C other = colorOf(row[2]);
    if (row[0] == "compare") {
      const bool isEqual = row[3].starts_with("equal");
      EXPECT_EQ(color == other, isEqual);
      EXPECT_EQ(color != other, !isEqual);
      EXPECT_EQ(color.colorCompare(other, 0.1f), row[3].ends_with("close"));
      continue;
    }
    if (row[0] == "+=") color += other;
    if (row[0] == "-=") color -= other;
    if (row[0] == "mix") color = color.mix(other, 0.25f);
    if (row[0] == "numbers") ((((color += 4) -= 1) *= 2) /= 0) /= 4;
    const Four expected = valuesOf(colorOf("RGB " + row[3]));
    if (row[0] == "clamp") {
      EXPECT_EQ(valuesOf(C(color).invert()), (Four{1 - expected[0], 1 - expected[1], 1 - expected[2], expected[3]}));
      color.clamp();
    }
    EXPECT_EQ(valuesOf(color), expected);
  }
}

TEST(Color, Defaults) {
  C self(0.5f, 0.25f, 0.125f, 1), red = C::RED, toNone = C::RED, ofNone(none, 0.3f, -2, 5, 0.5f);
  red.convertToHSL();
  toNone.convert(none);
  for (const C::Type to : allTypes) ofNone.convert(to);
  const std::pair<Four, Four> rows[] = {
      {valuesOf(C::YELLOW), {1, 1, 0, 1}},
      {valuesOf(C::CLEAR), {0, 0, 0, 0}},
      {valuesOf(C()), {0, 0, 0, 1}},
      {valuesOf(C(HSL, 1, 2, 3, 0.5f).add(1).mul(4).sub(2).div(2).div(0)), {3, 5, 7, 0.5f}},
      {valuesOf(self -= self), {0, 0, 0, 1}},
      {valuesOf(red), {0, 1, 0.5f, 1}},
      {valuesOf(toNone += 1.0f), {2, 1, 1, 1}},
      {valuesOf((((ofNone += 1.0f) /= 2.0f) += C::RED).clamp()), {0.3f, -2, 5, 0.5f}},
  };
  for (const auto& [actual, expected] : rows) EXPECT_EQ(actual, expected) << &actual - &rows[0].first;
  EXPECT_TRUE(C::WHITE.type == RGB && C(0.1f, 0.2f, 0.3f, 0.4f).type == RGB && C(CLU).type == CLU);
  EXPECT_EQ(red.getBlue(), 1) << "blue always equals the upper bound";
  const float nan = std::nanf("");
  EXPECT_FALSE(C::BLACK.colorCompare(C::BLACK, 0));
  EXPECT_FALSE(C(nan, nan, nan, 1).colorCompare(C(nan, nan, nan, 1), std::numeric_limits<float>::infinity()));
}

TEST(Color, ConvertsInPlaceThroughRGBAndKeepsAlpha) {
  void (C::*const toModel[])() = {&C::convertToHSL, &C::convertToHSV, &C::convertToHWB, &C::convertToRGB,
                                  &C::convertToYIQ, &C::convertToYUV, &C::convertToCLU};
  for (const C::Type from : allTypes) {
    for (const C::Type to : allTypes) {
      const C color(from, 0.3f, 0.4f, 0.5f, 0.125f);
      C throughRGB = color, direct = color, converted = color;
      throughRGB.convertToRGB();
      (throughRGB.*toModel[to])();
      (direct.*toModel[to])();
      converted.convert(to);
      EXPECT_TRUE(direct.type == to && converted.type == to);
      EXPECT_EQ(valuesOf(direct), valuesOf(throughRGB)) << from << to;
      EXPECT_EQ(valuesOf(converted), valuesOf(from == to ? color : throughRGB)) << from << to;
    }
  }
  C violet(HSL, 0, 1, 0.5f, 1);
  violet.convertToHSL();
  EXPECT_EQ(valuesOf(violet), (Four{300, 1, 0.5f, 1})) << "what comes back of RGB (1, 0, 1)";
}

TEST(Color, NothingHangsOnWhatIsNoNumber) {
  for (int i = 0; i < 7 * 7 * 5 * 3; ++i) {
    const C::Type from = allTypes[i % 7], to = allTypes[i / 7 % 7];
    const float value = std::array{NAN, INFINITY, -INFINITY, 3e38f, -3e38f}[i / 49 % 5];
    C color(from, 0.5f, 0.5f, 0.5f, 0.5f);
    *std::array{&color.c1, &color.c2, &color.c3}[i / 245] = value;
    color.convert(to);
    color += C(to, value, value, value, value);
    color.clamp();
    EXPECT_EQ(color.alpha, 0.5f);
  }
}

}  // namespace
