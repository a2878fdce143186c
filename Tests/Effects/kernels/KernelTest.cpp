// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/GradientMap.h"
#include "Effects/kernels/Levels.h"
#include "Effects/kernels/LevelsFloats.h"
#include "Effects/kernels/Mix.h"
#include "Effects/kernels/Power.h"
#include "Effects/kernels/Wipe.h"

#include "Tests/Effects/kernels/Targets.h"

#include <bit>

// Every instruction set of the machine against the definitions.

namespace vorto::effects {
namespace {

using Channels = testing::Types<std::uint8_t, std::uint16_t, float>;
TYPED_TEST_SUITE(Rows, Channels);

TYPED_TEST(Rows, MixAsDefined) {
  const auto a = this->row();
  const auto b = this->row();
  const auto weights = this->weights();
  this->expectSame(
      [&](auto* out, std::size_t count) { mixPixelsScalar(a.data(), b.data(), out, count, weights.data()); },
      [&](auto* out, std::size_t count) { mixPixels(a.data(), b.data(), out, count, weights.data()); });
  for (const double value : {0.0, 1e-6, 0.2, 0.4999999, 0.5, 0.7654321, 1 - 1e-5, 1.0}) {
    const auto weight = mixWeight<TypeParam>(value);
    this->expectSame([&](auto* out, std::size_t count) { mixRowScalar(a.data(), b.data(), out, count, weight); },
                     [&](auto* out, std::size_t count) { mixRow(a.data(), b.data(), out, count, weight); });
  }
}

TYPED_TEST(Rows, MapAsDefined) {
  withLayoutsOf<TypeParam>([&](auto layout) {
    using Layout = decltype(layout);
    for (const bool isOpaque : {false, true}) {
      std::vector<GradientEntry<TypeParam>> entries(sizeof(TypeParam) == 1 ? 256 : kGradientSteps + 1);
      for (auto& [alpha, red, green, blue] : entries) {
        alpha = isOpaque ? kOne<TypeParam> : this->channel();
        for (TypeParam* each : {&red, &green, &blue}) *each = this->channel();
      }
      const auto table = mapTable<Layout>(entries);
      EXPECT_EQ(table.isOpaque, isOpaque);
      auto in = this->row();
      for (std::size_t i = in.size() / 2; i < in.size() * 3 / 4; i += 4) in[i + Layout::kAlpha] = kOne<TypeParam>;
      for (std::size_t i = 0; i < in.size() / 4; i += 4) in[i + Layout::kAlpha] = 0;
      this->expectSame(
          [&](auto* out, std::size_t count) { gradientMapRowScalar<Layout>(in.data(), out, count, table); },
          [&](auto* out, std::size_t count) { gradientMapRow<Layout>(in.data(), out, count, table); });
    }
  });
}

TYPED_TEST(Rows, ChangeLevelsAsDefined) {
  if constexpr (!std::is_same_v<TypeParam, float>) {
    const auto table = [&] {
      LevelsTable<TypeParam> values(kLevelsTableSize<TypeParam>);
      for (auto& each : values) each = this->channel();
      return values;
    };
    for (const int kind : {0, 1, 2}) {
      LevelsTables<TypeParam> tables{table(), table(), table(), table()};
      if (kind == 2) tables.alpha.clear();
      if (kind == 1) tables.alpha[0] = 0, tables.alpha[kFull<TypeParam>] = kFull<TypeParam>;
      withLayoutsOf<TypeParam>([&](auto layout) {
        using Layout = decltype(layout);
        auto in = this->row();
        for (std::size_t i = in.size() / 2; i < in.size() * 3 / 4; i += 4) in[i + Layout::kAlpha] = kFull<TypeParam>;
        for (std::size_t i = 0; i < in.size() / 4; i += 4) in[i + Layout::kAlpha] = 0;
        this->expectSame([&](auto* out, std::size_t count) { levelsRowScalar<Layout>(in.data(), out, count, tables); },
                         [&](auto* out, std::size_t count) { levelsRow<Layout>(in.data(), out, count, tables); });
      });
    }
  }
}

TEST(LevelsOfFloats, AreAsDefined) {
  std::mt19937 random(3);
  const float inf = std::numeric_limits<float>::infinity();
  const float specials[] = {0, -0.0F, 1, -1, inf, -inf, std::nanf(""), 1e-44F, 3e38F, 0.25F};
  std::vector<float> in(4 * kPixels);
  for (float& each : in) {
    each = random() % 4 == 0 ? specials[random() % std::size(specials)]
                             : std::uniform_real_distribution<float>(-0.2F, 1.3F)(random);
  }
  FloatStage gamma{.isNeutral = false, .power = PowerTable(1 / 1.7), .blackIn = 0.1F, .inputSpan = 0.7F};
  FloatStage steep{.isNeutral = false, .power = PowerTable(40), .blackOut = 0.2F, .outputSpan = 0.5F};
  FloatStage limit{.isNeutral = false, .isLimit = true, .power = {}, .inputSpan = -1, .outputSpan = 0};
  FloatStage step{.isNeutral = false, .isStep = true, .power = {}, .blackIn = 0.5F, .blackOut = 1, .outputSpan = -1};
  for (const FloatLevels& levels : {FloatLevels{gamma, {}, steep, step, {}}, FloatLevels{{}, limit, gamma, {}, gamma},
                                    FloatLevels{{}, {}, {}, {}, step}}) {
    std::vector<float> expected(in.size()), out(in.size());
    levelsRowScalar<RGBAFloat>(in.data(), expected.data(), kPixels, levels);
    onEveryTarget([&] {
      levelsRow<RGBAFloat>(in.data(), out.data(), kPixels, levels);
      for (std::size_t i = 0; i < out.size(); ++i) {
        const bool isSame = std::memcmp(&out[i], &expected[i], sizeof(float)) == 0;
        ASSERT_TRUE(isSame || (std::isnan(out[i]) && std::isnan(expected[i]))) << out[i] << " for " << expected[i];
      }
    });
  }
}

template <class Weight>
void expectSameWipes() {
  std::vector<Weight> values(65536), expected(997), out(997);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<Weight>(i);
  const double nan = std::nan("");
  for (const auto& [start, step] :
       {std::pair{-0.1, 0.0012}, {1.3, -0.002}, {0.5, 0.0}, {0.25 / 65535, 0.5 / 65535}, {nan, 0.1}, {1e300, -1e298}}) {
    wipeRowScalar(start, step, 5, values.data(), values.size(), expected.data(), expected.size());
    onEveryTarget([&, from = start, by = step] {
      wipeRow(from, by, 5, values.data(), values.size(), out.data(), out.size());
      EXPECT_EQ(out, expected) << from << " by " << by;
    });
  }
}

TEST(Wipes, AreAsDefined) {
  expectSameWipes<std::uint32_t>();
  expectSameWipes<float>();
}

// Every exponent and a scatter of mantissas, denormals included.
std::vector<float> positiveFloats() {
  std::vector<float> floats;
  for (std::uint32_t bits = 1; bits < 0x7F800000; bits += 98'761) floats.push_back(std::bit_cast<float>(bits));
  for (const float each : {1.0F, 2.0F, 0.5F, std::nextafter(1.0F, 0.0F), std::nextafter(1.0F, 2.0F)}) {
    floats.push_back(each);
  }
  return floats;
}

std::int64_t stepsBetween(float a, float b) {
  return std::abs(std::int64_t{std::bit_cast<std::int32_t>(a)} - std::bit_cast<std::int32_t>(b));
}

TEST(Power, IsNearTheExactOneAndTheSameEverywhere) {
  const std::vector<float> values = positiveFloats();
  for (const double exponent : {0.0, 1e-30, 0.1, 1 / 2.2, 0.999, 1.0, 1 / 0.9, 2.0, 3.7, 100.0, 99'999.0}) {
    std::vector<float> expected = values;
    powerRowScalar(expected.data(), expected.size(), exponent);
    for (std::size_t i = 0; i < values.size(); ++i) {
      const auto exact = static_cast<float>(std::pow(static_cast<double>(values[i]), exponent));
      ASSERT_LE(stepsBetween(expected[i], exact), 1) << values[i] << " to the " << exponent;
    }
    onEveryTarget([&] {
      std::vector<float> row = values;
      powerRow(row.data(), row.size(), exponent);
      EXPECT_EQ(row, expected) << exponent;
    });
  }
}

TEST(Power, OfATableIsNearTheExactOne) {
  std::vector<float> values = positiveFloats();
  for (std::uint32_t bits = 0x3E000000; bits < 0x3F900000; bits += 77) values.push_back(std::bit_cast<float>(bits));
  for (const double exponent : {1e-30, 0.01, 0.1, 1 / 2.2, 0.999, 1.0, 1 / 0.9, 2.0, 3.7, 15.99, 16.01, 99'999.0}) {
    const PowerTable table(exponent);
    for (const float value : values) {
      const auto exact = static_cast<float>(std::pow(static_cast<double>(value), exponent));
      ASSERT_LE(stepsBetween(powered(value, table), exact), 2) << value << " to the " << exponent;
    }
  }
}

TEST(Power, LeavesWhatIsNotAboveZero) {
  const float inf = std::numeric_limits<float>::infinity();
  const PowerTable table(0.5);
  onEveryTarget([&] {
    std::vector<float> row = {0, -0.0F, -1, -inf, inf, std::nanf(""), -1e-44F, 0, 4};
    for (const float each : row) {
      const float raised = powered(each, table);
      EXPECT_EQ(std::bit_cast<std::uint32_t>(raised), std::bit_cast<std::uint32_t>(each == 4 ? 2.0F : each));
    }
    powerRow(row.data(), row.size(), 0.5);
    EXPECT_EQ(std::vector(row.begin(), row.begin() + 5), (std::vector<float>{0, 0, -1, -inf, inf}));
    EXPECT_TRUE(std::signbit(row[1]) && std::isnan(row[5]));
    EXPECT_EQ(std::vector(row.begin() + 6, row.end()), (std::vector<float>{-1e-44F, 0, 2}));
    row = {inf};
    powerRow(row.data(), row.size(), 0);
    EXPECT_EQ(row[0], 1);
  });
}

}  // namespace
}  // namespace vorto::effects
