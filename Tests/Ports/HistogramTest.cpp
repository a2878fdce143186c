// SPDX-License-Identifier: BSD-3-Clause
#include "Ports/VRTObjects.h"
#include "Tests/Ports/StateValues.h"

namespace {

TEST(Histogram, WritesItsKeysInOrder) {
  const PropertyList state = *VRTHistogram::histogram()->stateValue();
  ASSERT_EQ(state.entries().size(), levelsKeys.size());
  for (std::size_t i = 0; i < levelsKeys.size(); ++i) {
    const std::string key = levelsKeys[i];
    EXPECT_EQ(state.entries().keyAt(i), key);
    const bool isOne = key.starts_with("white") || key.starts_with("gamma");
    const PropertyList expected = i == 0 ? PropertyList::integer(0) : PropertyList::real(isOne ? 1 : 0);
    EXPECT_EQ(state.entries().valueAt(i), expected) << key;
  }
}

TEST(Histogram, EveryKeyReachesItsChannel) {
  VRTHistogram levels;
  ASSERT_TRUE(levels.initWithStateValue(distinctLevelsState()));
  EXPECT_EQ(levels.stateValue(), distinctLevelsState());
  EXPECT_EQ(levels.selectedChannel(), 3);
  // The keys from index 1 on, channel by channel.
  for (int channel = 0; channel < 5; ++channel) {
    const double first = 0.125 * (1 + 5 * channel) - 1;
    EXPECT_EQ(levels.blackInForChannel(channel), first);
    EXPECT_EQ(levels.blackOutForChannel(channel), first + 0.125);
    EXPECT_EQ(levels.whiteInForChannel(channel), first + 0.25);
    EXPECT_EQ(levels.whiteOutForChannel(channel), first + 0.375);
    EXPECT_EQ(levels.gammaForChannel(channel), first + 0.5);
  }
  const auto copy = levels.copyWithZone();
  ASSERT_TRUE(copy);
  EXPECT_EQ(std::dynamic_pointer_cast<VRTHistogram>(copy)->stateValue(), distinctLevelsState());
}

TEST(Histogram, AMissingOrForeignValueReadsAsZeroAndTextAsItsNumber) {
  PropertyList state;
  for (const char* key : levelsKeys) {
    if (std::string(key) != "gammaRed") state.set(key, PropertyList::real(2));
  }
  state.set("whiteInBlue", PropertyList::string("1.25"));
  state.set("selectedChannel", PropertyList::string("3.9"));
  state.set("gammaBlue", PropertyList::array());
  VRTHistogram levels;
  ASSERT_TRUE(levels.initWithStateValue(state));
  EXPECT_EQ(levels.gammaForChannel(1), 0);
  EXPECT_EQ(levels.whiteInForChannel(3), 1.25);
  EXPECT_EQ(levels.gammaForChannel(3), 0);
  EXPECT_EQ(levels.gammaForChannel(2), 2);
  EXPECT_EQ(levels.selectedChannel(), 3);

  EXPECT_FALSE(levels.initWithStateValue(PropertyList::array()));
  EXPECT_EQ(levels.gammaForChannel(2), 2);
}

TEST(Histogram, ChannelsThatAreNotThereStoreNothing) {
  using V = VRTHistogram;
  const std::pair<void (V::*)(double, int), double (V::*)(int) const> values[] = {
      {&V::setBlackIn, &V::blackInForChannel},
      {&V::setBlackOut, &V::blackOutForChannel},
      {&V::setWhiteIn, &V::whiteInForChannel},
      {&V::setWhiteOut, &V::whiteOutForChannel},
      {&V::setGamma, &V::gammaForChannel}};
  V levels;
  for (const auto& [set, get] : values) {
    for (const int channel : {-1, 5, 1 << 30, -2147483647 - 1}) {
      (levels.*set)(2, channel);
      EXPECT_EQ((levels.*get)(channel), 0);
    }
  }
  EXPECT_EQ(levels.stateValue(), VRTHistogram::histogram()->stateValue());
  for (int i = 0; i < 25; ++i) (levels.*values[i % 5].first)(i - 7.5, i / 5);
  for (int i = 0; i < 25; ++i) EXPECT_EQ((levels.*values[i % 5].second)(i / 5), i - 7.5);
}

}  // namespace
