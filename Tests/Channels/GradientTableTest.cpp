// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/kernels/GradientTable.h"

#include "Tests/TarnCore/EveryTarget.h"

// The table kernels against their scalar definition, bit for bit, on every instruction set of this machine.

namespace {

using namespace vorto::kernels;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kDenormal = std::numeric_limits<double>::denorm_min();
constexpr double kOdd[] = {kInfinity, -kInfinity, kNaN,      -kNaN,     kDenormal, -kDenormal, 0.0,        -0.0,
                           1e300,     -1e300,     1e-300,    1e-42,     8421504.0, 8421505.0,  -8421505.0, 1e15,
                           2.5,       -0.75,      1048576.0, 1048577.0, 1.0 / 3,   1.0,        0.999999999};

struct Gradient {
  VRTGradientLookup color, opacity;
};

// Gradients with a share of odd numbers, in places up to `spread` wide.
class RandomGradients {
 public:
  RandomGradients(std::uint32_t seed, double oddness, double spread)
      : oddness_(oddness), spread_(spread), random_(seed) {}

  void fill(VRTGradientLookup& lookup, std::size_t entries) {
    for (std::size_t i = 0; i < entries; ++i) {
      lookup.collect(position(), {component(), component(), component(), component(), middle(), interpolation()});
    }
    lookup.arrange();
  }

 private:
  bool chance(double probability) { return std::bernoulli_distribution(probability)(random_); }
  double unit() { return std::uniform_real_distribution<double>(0.0, 1.0)(random_); }
  double odd() { return kOdd[random_() % std::size(kOdd)]; }
  double position() {
    if (chance(oddness_)) return odd();
    if (chance(0.2)) return std::round(unit() * 8) / 8;  // meets positions of the table, and other samples
    return unit() * spread_ - (spread_ - 1) / 2;
  }
  double middle() { return chance(oddness_) ? odd() : chance(0.2) ? unit() * 8 - 4 : unit(); }
  // Some make tables of nothing but integers.
  double component() { return chance(oddness_) ? odd() : chance(0.2) ? std::round(unit() * 5) / 5 : unit(); }
  std::int32_t interpolation() { return static_cast<std::int32_t>(chance(0.1) ? random_() % 8 - 2 : random_() % 3); }

  const double oddness_, spread_;
  std::mt19937 random_;
};

template <class Stored>
void expectEqual(const Gradient& gradient, std::uint32_t count) {
  constexpr std::size_t kGuard = 64;
  const GradientEntries color{gradient.color.begin(), gradient.color.size()};
  const GradientEntries opacity{gradient.opacity.begin(), gradient.opacity.size()};
  std::vector<Stored> expected(std::size_t{count} * 4 + 2 * kGuard, Stored(0x5A)), actual = expected;
  gradientTableDefinition(color, opacity, expected.data() + kGuard, count);
  gradientTable(color, opacity, actual.data() + kGuard, count);
  if (std::memcmp(expected.data(), actual.data(), expected.size() * sizeof(Stored)) == 0) return;
  std::size_t i = 0;
  while (std::memcmp(&expected[i], &actual[i], sizeof(Stored)) == 0) ++i;
  FAIL() << count << " entries, " << kGuard << " + component " << i << " of size " << sizeof(Stored) << ": "
         << +actual[i] << " instead of " << +expected[i];
}

void expectEqualTables(RandomGradients& random, std::size_t colors, std::size_t opacities, std::uint32_t count) {
  Gradient gradient;
  random.fill(gradient.color, colors);
  random.fill(gradient.opacity, opacities);
  expectEqual<std::uint8_t>(gradient, count);
  expectEqual<std::uint16_t>(gradient, count);
  expectEqual<float>(gradient, count);
}

TEST(GradientTable, EveryCountAndEveryKindOfGradient) {
  ASSERT_GE(simdTargets().size(), 2U);
  bool isFirst = true;
  onEveryTarget([&isFirst] {
    EXPECT_EQ(useScalar(), std::exchange(isFirst, false));
    for (std::uint32_t count = 0; count <= 130; ++count) {
      for (const auto& [oddness, spread] :
           {std::pair{0.0, 1.0}, {0.0, 1.8}, {0.05, 1.0}, {0.05, 1.8}, {0.4, 1.0}, {0.4, 1.8}}) {
        RandomGradients random(count * 3 + static_cast<std::uint32_t>(oddness * 100), oddness, spread);
        for (const std::size_t n : {0, 1, 2, 3, 9}) expectEqualTables(random, n, (n + count) % 4, count);
      }
    }
    RandomGradients random(77, 0, 1);
    for (const std::uint32_t count : {255U, 256U, 257U, 1023U, 4099U, 65537U}) {
      expectEqualTables(random, 8, 2, count);
      expectEqualTables(random, 700, 90, count);
    }
  });
}

}  // namespace
