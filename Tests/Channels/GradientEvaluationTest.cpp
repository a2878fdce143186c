// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradient.h"
#include "TarnCore/TCColor.h"

// Evaluation against a naive recomputation that shares nothing with the product: an ordered map, powers by pow().

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Stop {
  std::vector<double> values;
  double middle;
  int kind;
};
using Stops = std::map<double, Stop>;

double curve(double a, double b, double c, double d, double s) {
  return a * std::pow(1 - s, 3) + 3 * b * std::pow(1 - s, 2) * s + 3 * c * (1 - s) * std::pow(s, 2) +
         d * std::pow(s, 3);
}

// The last point tried on the way from 0 by halves.
double searched(double middle, double t) {
  double reached = 0;
  for (int halving = 1;; ++halving) {
    const double tried = reached + std::ldexp(1.0, -halving);
    const double distance = curve(0, middle, middle, 1, tried) - t;
    if (halving == 24 || std::fabs(distance) < 1e-7) return tried;
    if (distance <= 0) reached = tried;
  }
}

std::vector<double> evaluate(const Stops& stops, double x) {
  const auto right = stops.lower_bound(x);
  if (right == stops.begin()) return right->second.values;
  const auto left = std::prev(right);
  if (right == stops.end() || left->second.kind == 0) return left->second.values;
  const double t = (x - left->first) / (right->first - left->first);
  std::vector<double> result;
  for (std::size_t i = 0; i < left->second.values.size(); ++i) {
    const double a = left->second.values[i];
    const double b = right->second.values[i];
    result.push_back(left->second.kind == 1 ? a + t * (b - a) : curve(a, a, b, b, searched(left->second.middle, t)));
  }
  return result;
}

void clear(VRTChannelGradientFolder& folder) {
  for (VRTChannelBase* sample : folder.getDescendants()) delete sample;
  folder.getDescendants().clear();
}

struct Pair {
  explicit Pair(std::uint32_t seed) {
    std::mt19937 random(seed);
    const auto unit = [&random] { return std::uniform_real_distribution<double>(0.0, 1.0)(random); };
    clear(gradient.rgbFolder);
    clear(gradient.alphaFolder);
    for (int i = 0; i < 7; ++i) {
      const double r = unit(), g = unit(), b = unit(), position = i == 6 ? 0.5 : unit(), middle = unit();
      const int kind = static_cast<int>(unit() * 3);
      gradient.rgbFolder.addSample(r, g, b, position, middle, kind);
      colors[position] = {{r, g, b}, middle, kind};
    }
    for (int i = 0; i < 3; ++i) {
      const double alpha = unit(), position = unit(), middle = unit();
      gradient.alphaFolder.addSample(alpha, position, middle, 2 - i);
      opacities[position] = {{alpha}, middle, 2 - i};
    }
  }

  VRTChannelGradient gradient;
  Stops colors;
  Stops opacities;
};

TEST(GradientEvaluation, TablesAndColorsMatchTheNaiveRecomputation) {
  constexpr std::uint32_t kCount = 501;
  for (std::uint32_t seed = 0; seed < 40; ++seed) {
    const Pair pair(seed);
    std::vector<float> floats(kCount * 4);
    std::vector<std::uint8_t> bytes(kCount * 4);
    std::vector<std::uint16_t> words(kCount * 4);
    pair.gradient.getGradient(0.0, floats.data(), kCount);
    pair.gradient.getGradient(0.0, bytes.data(), kCount);
    pair.gradient.getGradient(0.0, words.data(), kCount);
    for (std::uint32_t i = 0; i < kCount; ++i) {
      const double x = i * (1.0 / (kCount - 1));
      std::vector<double> argb = evaluate(pair.opacities, x);
      for (const double component : evaluate(pair.colors, x)) argb.push_back(component);
      VortoColor color;
      pair.gradient.getColor(0.0, x, &color);
      const float fromColor[4] = {color.alpha, color.c1, color.c2, color.c3};
      for (std::size_t c = 0; c < 4; ++c) {
        const float stored = floats[i * 4 + c];
        // pow() may round a power otherwise, which can shift the last point tried.
        ASSERT_NEAR(stored, argb[c], 1e-6) << "seed " << seed << ", entry " << i << ", component " << c;
        ASSERT_EQ(stored, fromColor[c]);
        ASSERT_EQ(bytes[i * 4 + c], static_cast<int>(stored * 255.0));
        ASSERT_EQ(words[i * 4 + c], static_cast<int>(stored * 255.0));
      }
    }
  }
}

TEST(GradientEvaluation, ANewGradientGoesSmoothlyFromRedToBlue) {
  const VRTChannelGradient gradient;
  VortoColor color(VortoColor::HSV);
  gradient.getColor(3.0, 0.5, &color);
  EXPECT_EQ(color.type, VortoColor::RGB);
  for (const float half : {color.c1, color.c3}) EXPECT_NEAR(half, 0.5, 1e-6);
  EXPECT_EQ(color.c2, 0.0F);
  EXPECT_EQ(color.alpha, 1.0F);
  gradient.getColor(0.0, -7.0, &color);
  EXPECT_EQ(color, VortoColor::RED);
  gradient.getColor(0.0, 7.0, &color);
  EXPECT_EQ(color, VortoColor::BLUE);

  // The last point tried overshoots: at t = 1 the search ends one step of 2^-24 before 1.
  float table[8];
  gradient.getGradient(0.0, table, 2);
  EXPECT_EQ(table[1], 1.0F);
  EXPECT_EQ(table[5], static_cast<float>(curve(1, 1, 0, 0, searched(0.5, 1.0))));
}

TEST(GradientEvaluation, SegmentsBelongToTheSampleOnTheLeft) {
  const struct {
    int kind;
    double position;
    double entry;     // the position of the sample that counts
    double expected;  // of red, from 0.25 at 0 by 0.75 at 0.5 to 0.5 at 1; -1 for "left as it was"
  } rows[] = {
      {1, -1.0, 0, 0.25}, {7, 0.0, 0, 0.25}, {1, 0.25, 0, 0.5},   {1, 0.5, 0, 0.75},
      {0, 0.25, 0, 0.25}, {0, 0.5, 0, 0.25}, {0, 1.0, 0.5, 0.75}, {0, 1.5, 1, 0.5},
      {-3, 1.5, 1, 0.5},  {3, 0.25, 0, -1},  {1, kNaN, 0, 0.25},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE("kind " + std::to_string(row.kind) + " at " + std::to_string(row.position));
    VRTChannelGradientRGBFolder folder;
    folder.addSample(0.25, 0, 0, 0.0, 0.5, row.kind);
    folder.addSample(0.5, 0, 0, 1.0, 0.5, row.kind);
    folder.addSample(0.75, 0, 0, 0.5, 0.5, row.kind);
    VRTGradientLookup lookup;
    folder.getLookup(0.0, lookup);
    double rgba[4] = {-1, -1, -1, -1};
    float argb[4] = {-1, -1, -1, -1};
    const auto* entry = folder.getRGBAFromLookup(row.position, rgba, lookup);
    folder.getARGBFromLookup(row.position, argb, lookup);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->position, row.entry);
    EXPECT_EQ((std::array{rgba[0], rgba[3]}), (std::array{row.expected, -1.0}));
    EXPECT_EQ((std::array{argb[1], argb[0]}), (std::array{static_cast<float>(row.expected), -1.0F}));
  }
}

// More of them than a sort leaves in their order by chance.
TEST(GradientEvaluation, TheLastOfManySamplesAtOnePositionCounts) {
  VRTChannelGradientAlphaFolder folder;
  folder.addSample(0, 0.9, 0.5, 1);
  for (int i = 1; i <= 300; ++i) folder.addSample(i, i % 3 * 0.25, 0.5, 1);
  VRTGradientLookup lookup;
  folder.getLookup(0.0, lookup);
  ASSERT_EQ(lookup.size(), 4u);
  const double last[] = {300, 298, 299, 0};
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(lookup.begin()[i].sample.alpha, last[i]);
}

TEST(GradientEvaluation, WhatIsLeftUnwrittenReadsZeroInATable) {
  VRTChannelGradient gradient;
  clear(gradient.rgbFolder);
  gradient.rgbFolder.addSample(1, 1, 1, 0.0, 0.5, 9);
  gradient.rgbFolder.addSample(1, 1, 1, 1.0, 0.5, 9);
  float table[12];
  gradient.getGradient(0.0, table, 3);
  EXPECT_EQ(std::vector<float>(table, table + 12), (std::vector<float>{1, 1, 1, 1, 1, 0, 0, 0, 1, 0, 0, 0}));

  const std::unique_ptr<VRTChannelBase> copy = gradient.clone();
  dynamic_cast<VRTChannelGradient&>(*copy).getGradient(0.0, table, 3);
  EXPECT_EQ(std::vector<float>(table, table + 12), std::vector<float>(12, 0.0F));
  VortoColor color = VortoColor::RED;
  dynamic_cast<VRTChannelGradient&>(*copy).getColor(0.0, 0.5, &color);
  EXPECT_EQ(color, VortoColor::CLEAR);
}

TEST(GradientEvaluation, IntegersAreTruncatedAndKeepTheirLowPart) {
  const double infinity = std::numeric_limits<double>::infinity();
  const std::vector<std::pair<double, std::uint16_t>> cases = {
      {1.0, 255},     {0.999, 254},       {-0.001, 0}, {2.0, 510},     {-0.5, 0xFF81},
      {1e30, 0xFFFF}, {infinity, 0xFFFF}, {-1e30, 0},  {-infinity, 0}, {kNaN, 0}};
  for (const auto& [component, word] : cases) {
    VRTChannelGradient gradient;
    clear(gradient.rgbFolder);
    gradient.rgbFolder.addSample(component, 0, 0, 0.0, 0.5, 0);
    std::uint16_t words[4];
    std::uint8_t bytes[4];
    gradient.getGradient(0.0, words, 1);
    gradient.getGradient(0.0, bytes, 1);
    EXPECT_EQ(words[1], word) << component;
    EXPECT_EQ(bytes[1], word & 0xFF) << component;
  }
}

}  // namespace
