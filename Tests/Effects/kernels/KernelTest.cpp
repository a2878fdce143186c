// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Blend.h"
#include "Effects/kernels/GradientMap.h"
#include "Effects/kernels/Levels.h"
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

TYPED_TEST(Rows, BlendAsDefined) {
  withLayoutsOf<TypeParam>([&](auto layout) {
    using Layout = decltype(layout);
    const auto a = this->row();
    const auto b = this->row();
    this->expectSame(
        [&](auto* out, std::size_t count) { blendRowScalar<OverMode, Layout>(a.data(), b.data(), out, count); },
        [&](auto* out, std::size_t count) { blendRow<OverMode, Layout>(a.data(), b.data(), out, count); });
    this->expectSame(
        [&](auto* out, std::size_t count) { blendRowScalar<MultiplyMode, Layout>(a.data(), b.data(), out, count); },
        [&](auto* out, std::size_t count) { blendRow<MultiplyMode, Layout>(a.data(), b.data(), out, count); });
  });
}

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
    MapTable<Layout> table(sizeof(TypeParam) == 1 ? 256 : kGradientSteps + 1);
    for (auto& entry : table) {
      for (TypeParam& each : entry) each = this->channel();
    }
    const auto in = this->row();
    this->expectSame(
        [&](auto* out, std::size_t count) { gradientMapRowScalar<Layout>(in.data(), out, count, table.data()); },
        [&](auto* out, std::size_t count) { gradientMapRow<Layout>(in.data(), out, count, table.data()); });
  });
}

TYPED_TEST(Rows, ChangeLevelsAsDefined) {
  if constexpr (!std::is_same_v<TypeParam, float>) {
    const auto table = [&] {
      LevelsTable<TypeParam> values(kLevelsTableSize<TypeParam>);
      for (auto& each : values) each = this->channel();
      return values;
    };
    for (const bool keepsEnds : {false, true}) {
      LevelsTables<TypeParam> tables{table(), table(), table(), table()};
      if (keepsEnds) tables.alpha[0] = 0, tables.alpha[kFull<TypeParam>] = kFull<TypeParam>;
      withLayoutsOf<TypeParam>([&](auto layout) {
        using Layout = decltype(layout);
        auto in = this->row();
        for (std::size_t i = in.size() / 2; i < in.size() * 3 / 4; i += 4) in[i + Layout::kAlpha] = kFull<TypeParam>;
        this->expectSame([&](auto* out, std::size_t count) { levelsRowScalar<Layout>(in.data(), out, count, tables); },
                         [&](auto* out, std::size_t count) { levelsRow<Layout>(in.data(), out, count, tables); });
      });
    }
  }
}

template <class Weight>
void expectSameWipes() {
  std::vector<Weight> values(65536), expected(997), out(997);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<Weight>(i);
  const double nan = std::nan("");
  for (const auto& [start, step] :
       {std::pair{-0.1, 0.0012}, {1.3, -0.002}, {0.5, 0.0}, {0.25 / 65535, 0.5 / 65535}, {nan, 0.1}, {1e300, -1e298}}) {
    wipeRowScalar(start, step, values.data(), values.size(), expected.data(), 0, expected.size());
    onEveryTarget([&, from = start, by = step] {
      wipeRow(from, by, values.data(), values.size(), out.data(), out.size());
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

TEST(Power, LeavesWhatIsNotAboveZero) {
  const float inf = std::numeric_limits<float>::infinity();
  onEveryTarget([&] {
    std::vector<float> row = {0, -0.0F, -1, -inf, inf, std::nanf(""), -1e-44F, 0, 4};
    powerRow(row.data(), row.size(), 0.5);
    EXPECT_EQ(std::vector(row.begin(), row.begin() + 5), (std::vector<float>{0, 0, -1, -inf, inf}));
    EXPECT_TRUE(std::signbit(row[1]) && std::isnan(row[5]));
    EXPECT_EQ(std::vector(row.begin() + 6, row.end()), (std::vector<float>{-1e-44F, 0, 2}));
    row = {inf};
    powerRow(row.data(), row.size(), 0);
    EXPECT_EQ(row[0], 1);
  });
}

// Of bytes there are few enough to try everything: each color of both images under each pair of alphas.
TEST(Bytes, BlendAsDefinedForEveryValue) {
  std::vector<std::uint8_t> behind, front;
  for (std::uint32_t i = 0; i < 1U << 16; ++i) {
    const auto low = static_cast<std::uint8_t>(i);
    const auto high = static_cast<std::uint8_t>(i >> 8);
    behind.insert(behind.end(), {low, 0, 255, 0});
    front.insert(front.end(), {high, 255, 0, 0});
  }
  std::vector<std::uint8_t> expected(behind.size()), out(behind.size());
  for (int alphas = 0; alphas < 65536; alphas += 257 - 16 * (alphas % 2)) {
    for (std::size_t i = 3; i < behind.size(); i += 4) {
      behind[i] = static_cast<std::uint8_t>(alphas);
      front[i] = static_cast<std::uint8_t>(alphas >> 8);
    }
    const std::size_t count = behind.size() / 4;
    blendRowScalar<MultiplyMode, RGBA8>(behind.data(), front.data(), expected.data(), count);
    blendRow<MultiplyMode, RGBA8>(behind.data(), front.data(), out.data(), count);
    ASSERT_EQ(out, expected) << alphas;
    blendRowScalar<OverMode, RGBA8>(behind.data(), front.data(), expected.data(), count);
    blendRow<OverMode, RGBA8>(behind.data(), front.data(), out.data(), count);
    ASSERT_EQ(out, expected) << alphas;
  }
}

}  // namespace
}  // namespace vorto::effects
