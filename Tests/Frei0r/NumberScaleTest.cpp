// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/Out/NumberScale.h"

namespace {

using frei0r::NumberScale;

TEST(Frei0rNumbers, SharesStandForValues) {
  struct Case {
    host::PortRange range;
    double share;
    double value;
  };
  const Case cases[] = {
      {{0.0, 1.0}, 0.3, 0.3},
      {{0.0, 100.0}, 0.35, 35},
      {{-4.0, 4.0}, 0.625, 1},
      {{-360.0, 360.0}, 0.625, 90},
      {{0.1, 100.0}, 0, 0.1},
      {{0.1, 100.0}, 1, 100},
      {{1.0, std::nullopt}, 0, 1},
      {{1.0, std::nullopt}, 0.5, 2},
      {{1.0, std::nullopt}, 0.75, 4},
      {{std::nullopt, 5.0}, 0.5, 4},
      {{std::nullopt, 5.0}, 0, 5},
      {{}, 0.5, 0},
      {{}, 0.75, 1},
      {{}, 0.25, -1},
      {{}, 0.95, 9},
      {{-1e308, 1e308}, 0.75, 0.5e308},
      {{7.0, 7.0}, 0, 7},
  };
  for (const Case& each : cases) {
    const NumberScale scale(each.range);
    SCOPED_TRACE(scale.explanation());
    EXPECT_DOUBLE_EQ(scale.value(each.share), each.value);
    EXPECT_NEAR(scale.share(each.value), each.share, 1e-12);
  }
  EXPECT_EQ(NumberScale({0.0, 100.0}).value(0.35), 35) << "no digit more";
}

TEST(Frei0rNumbers, NothingLeavesTheRange) {
  for (const host::PortRange range :
       {host::PortRange{0.0, 1.0}, {2.0, std::nullopt}, {std::nullopt, 2.0}, {}, {3.0, 1.0}}) {
    const NumberScale scale(range);
    for (const double share : {-1.0, 0.0, 0.1, 0.999999999999, 1.0, 7.0}) {
      const double value = scale.value(share);
      EXPECT_TRUE(std::isfinite(value) && std::abs(value) < 1e9 + 3);
      EXPECT_GE(value, range.minimum.value_or(value));
      EXPECT_TRUE(range.minimum || value <= range.maximum.value_or(value)) << value;
    }
    for (const double value : {-1e300, -1.0, 0.0, 5.0, 1e300}) {
      EXPECT_TRUE(scale.share(value) >= 0 && scale.share(value) <= 1) << value;
    }
  }
}

}  // namespace
