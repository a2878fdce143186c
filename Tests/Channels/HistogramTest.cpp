// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelHistogram.h"

namespace {

std::vector<double> valuesOf(const VRTChannelHistogram& levels, int channel) {
  return {levels.getBlackInValue(channel, 1, 2), levels.getBlackOutValue(channel, 1, 2),
          levels.getWhiteInValue(channel, 1, 2), levels.getWhiteOutValue(channel, 1, 2),
          levels.getGammaValue(channel, 1, 2)};
}

void set(VRTChannelHistogram& levels, int channel, double first) {
  levels.setBlackInValue(first, channel, 0, 0);
  levels.setBlackOutValue(first + 1, channel, 0, 0);
  levels.setWhiteInValue(first + 2, channel, 0, 0);
  levels.setWhiteOutValue(first + 3, channel, 0, 0);
  levels.setGammaValue(first + 4, channel, 0, 0);
}

TEST(Histogram, EveryChannelHasItsOwnValuesAndOthersHaveNone) {
  VRTChannelHistogram levels;
  for (const int channel : {-1, 5, 1000000, -2147483647 - 1}) {
    set(levels, channel, 9);
    EXPECT_EQ(valuesOf(levels, channel), std::vector<double>(5, 0.0));
  }
  for (int channel = 0; channel < 5; ++channel)
    EXPECT_EQ(valuesOf(levels, channel), (std::vector<double>{0, 0, 1, 1, 1}));
  for (int channel = 0; channel < 5; ++channel) set(levels, channel, channel * 10 - 20.5);
  for (int channel = 0; channel < 5; ++channel) {
    const double first = channel * 10 - 20.5;
    EXPECT_EQ(valuesOf(levels, channel), (std::vector{first, first + 1, first + 2, first + 3, first + 4}));
  }
}

TEST(Histogram, CopiesAreComplete) {
  VRTChannelHistogram levels;
  levels.selectedChannel = 3;
  set(levels, 2, 0.25);
  const std::unique_ptr<VRTChannelBase> clone = levels.clone();
  const auto& copy = dynamic_cast<const VRTChannelHistogram&>(*clone);
  EXPECT_EQ(copy.selectedChannel, 3);
  EXPECT_EQ(valuesOf(copy, 2), valuesOf(levels, 2));
  EXPECT_NE(copy.getID(), levels.getID());
  EXPECT_NE(copy.samples[2].getID(), levels.samples[2].getID());
}

}  // namespace
