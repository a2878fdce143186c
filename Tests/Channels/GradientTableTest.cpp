// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/kernels/GradientTable.h"

#include "TarnCore/kernels/Dispatch.h"

// The table kernels against their scalar definition, bit for bit, on every instruction set of this machine.

namespace {

using namespace vorto::kernels;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kDenormal = std::numeric_limits<double>::denorm_min();
constexpr double kOdd[] = {kInfinity, -kInfinity, kNaN,      -kNaN,     kDenormal, -kDenormal, 0.0,        -0.0,
                           1e300,     -1e300,     1e-300,    1e-42,     8421504.0, 8421505.0,  -8421505.0, 1e15,
                           2.5,       -0.75,      1048576.0, 1048577.0, 1.0 / 3,   1.0,        0.999999999};

class RandomGradient {
 public:
  explicit RandomGradient(std::uint32_t seed) : _random(seed) {}

  bool chance(double probability) { return std::bernoulli_distribution(probability)(_random); }
  double unit() { return std::uniform_real_distribution<double>(0.0, 1.0)(_random); }
  double odd() { return kOdd[_random() % std::size(kOdd)]; }

  double position() {
    if (chance(oddness)) return odd();
    if (chance(0.2)) return std::round(unit() * 8) / 8;  // meets positions of the table, and other samples
    return unit() * spread - (spread - 1) / 2;
  }
  double middle() { return chance(oddness) ? odd() : chance(0.2) ? unit() * 8 - 4 : unit(); }
  double component() { return chance(oddness) ? odd() : unit(); }
  std::int32_t interpolation() { return static_cast<std::int32_t>(chance(0.1) ? _random() % 8 - 2 : _random() % 3); }

  void fill(VRTGradientLookup& lookup, std::size_t entries) {
    for (std::size_t i = 0; i < entries; ++i) {
      lookup.collect(position(), {component(), component(), component(), component(), middle(), interpolation()});
    }
    lookup.arrange();
  }

  double oddness = 0.0;
  double spread = 1.0;

 private:
  std::mt19937 _random;
};

GradientEntries entriesOf(const VRTGradientLookup& lookup) {
  return {lookup.begin(), lookup.size()};
}

template <class Stored>
void expectEqual(const VRTGradientLookup& color, const VRTGradientLookup& opacity, std::uint32_t count,
                 const std::string& what) {
  constexpr std::size_t kGuard = 64;
  std::vector<Stored> expected(std::size_t{count} * 4 + 2 * kGuard);
  std::memset(expected.data(), 0xA5, expected.size() * sizeof(Stored));
  std::vector<Stored> actual = expected;
  gradientTableDefinition(entriesOf(color), entriesOf(opacity), expected.data() + kGuard, count);
  gradientTable(entriesOf(color), entriesOf(opacity), actual.data() + kGuard, count);
  if (std::memcmp(expected.data(), actual.data(), expected.size() * sizeof(Stored)) == 0) return;
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (std::memcmp(&expected[i], &actual[i], sizeof(Stored)) == 0) continue;
    FAIL() << what << ", " << count << " entries, component " << static_cast<std::int64_t>(i) - std::int64_t{kGuard}
           << " of size " << sizeof(Stored) << ": " << +actual[i] << " instead of " << +expected[i];
  }
}

class GradientTable : public testing::Test {
 protected:
  void TearDown() override { restoreSimdTarget(); }

  void SetUp() override { ASSERT_GE(simdTargets().size(), 2U); }

  static void compare(RandomGradient& random, std::size_t colors, std::size_t opacities, std::uint32_t count,
                      const std::string& what) {
    VRTGradientLookup color;
    VRTGradientLookup opacity;
    random.fill(color, colors);
    random.fill(opacity, opacities);
    expectEqual<std::uint8_t>(color, opacity, count, what);
    expectEqual<std::uint16_t>(color, opacity, count, what);
    expectEqual<float>(color, opacity, count, what);
  }
};

TEST_F(GradientTable, EveryCountAndEveryKindOfGradient) {
  const std::vector<SimdTarget> targets = simdTargets();
  for (const SimdTarget& target : targets) {
    forceSimdTarget(target);
    EXPECT_EQ(useScalar(), &target == &targets.front());
    for (std::uint32_t count = 0; count <= 130; ++count) {
      for (const double oddness : {0.0, 0.05, 0.4}) {
        RandomGradient random(count * 3 + static_cast<std::uint32_t>(oddness * 100));
        random.oddness = oddness;
        for (const double spread : {1.0, 1.8}) {
          random.spread = spread;
          for (const std::size_t entries : {0, 1, 2, 3, 9}) {
            compare(random, entries, (entries + count) % 4, count, target.name);
          }
        }
      }
    }
    RandomGradient random(77);
    for (const std::uint32_t count : {255U, 256U, 257U, 1023U, 4099U, 65537U}) {
      compare(random, 8, 2, count, target.name);
      compare(random, 700, 90, count, target.name);
    }
  }
}

// Every middle of a fine grid: the search must stop where the definition does.
TEST_F(GradientTable, SmoothSegmentsOfEveryMiddle) {
  for (const SimdTarget& target : simdTargets()) {
    forceSimdTarget(target);
    for (int middle = -20; middle <= 120; ++middle) {
      VRTGradientLookup color;
      VRTGradientLookup opacity;
      color.collect(0.0, {0.1, 0.0, 1.0, 0.0, middle / 100.0, 2});
      color.collect(1.0, {0.9, 1.0, 0.2, 0.0, 0.5, 2});
      color.arrange();
      opacity.collect(0.0, {0.0, 0.0, 0.0, 1.0, 0.5, 2});
      opacity.arrange();
      expectEqual<float>(color, opacity, 1025, target.name);
    }
  }
}

}  // namespace
