// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradient.h"
#include "Ports/VRTObjects.h"
#include "Tests/Ports/StateValues.h"

#include <stdexcept>

namespace {

TEST(Gradient, StartsWhiteToBlackAndOpaque) {
  const auto gradient = VRTGradient::gradient();
  EXPECT_EQ(gradient->stateValue(), gradientState({0, 0.5, 2, 1, 1, 1, 1, 0.5, 2, 0, 0, 0}, {0, 0.5, 2, 1}));

  std::vector<std::uint8_t> bytes(256 * 4);
  gradient->getGradient8(bytes.data(), 256);
  EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + 4),
            (std::vector<std::uint8_t>{255, 255, 255, 255}));
  EXPECT_EQ(std::vector<std::uint8_t>(bytes.end() - 4, bytes.end()), (std::vector<std::uint8_t>{255, 0, 0, 0}));

  std::vector<std::uint16_t> words(2 * 4);
  gradient->getGradient16(words.data(), 2);
  EXPECT_EQ(words, (std::vector<std::uint16_t>{255, 255, 255, 255, 255, 0, 0, 0}));

  std::vector<float> floats(2 * 4);
  gradient->getGradientFloat(floats.data(), 2);
  const float expected[] = {1, 1, 1, 1, 1, 0, 0, 0};
  for (std::size_t i = 0; i < floats.size(); ++i) {
    EXPECT_NEAR(floats[i], expected[i], 1e-7) << i;  // smooth segments are solved to within this
  }
}

TEST(Gradient, KeepsSamplesAsTheyStandInTheState) {
  // Out of order, at equal positions, outside 0 to 1, of an unknown kind, and with a negative zero.
  const double inf = std::numeric_limits<double>::infinity();
  const PropertyList state =
      gradientState({0.9, 0.1, 1, 0.25, 1e-300, 17.123456789012345, 0.2, 0.5, 0, -0.0, 1, inf, 0.2, 0.5, 99, -3, 0, 0},
                    {2.5, 0.75, 2, 0.5, -1, 0.5, 1, 0.25});
  VRTGradient gradient;
  ASSERT_TRUE(gradient.initWithStateValue(state));
  EXPECT_EQ(gradient.stateValue(), state);
}

TEST(Gradient, MissingArraysKeepTheDefaultsAndEmptyOnesGiveNoSamples) {
  const PropertyList defaults = *VRTGradient::gradient()->stateValue();
  const PropertyList onlyAlpha = dict({{"alphaSamples", sampleArray(4, {0, 0.5, 1, 0.25})}});
  VRTGradient gradient;
  ASSERT_TRUE(gradient.initWithStateValue(onlyAlpha));
  EXPECT_EQ(*gradient.stateValue()->find("rgbSamples"), *defaults.find("rgbSamples"));
  EXPECT_EQ(*gradient.stateValue()->find("alphaSamples"), *onlyAlpha.find("alphaSamples"));

  ASSERT_TRUE(gradient.initWithStateValue(PropertyList()));  // from the defaults again, not from what it held
  EXPECT_EQ(gradient.stateValue(), defaults);

  ASSERT_TRUE(gradient.initWithStateValue(gradientState({}, {})));
  EXPECT_EQ(gradient.kxChannelGradient()->rgbFolder.getNumberOfDescendants(), 0U);
  EXPECT_EQ(gradient.kxChannelGradient()->alphaFolder.getNumberOfDescendants(), 0U);
  std::vector<float> table(16 * 4);
  gradient.getGradientFloat(table.data(), 16);  // what it yields is the channel's to say; it must not crash
}

TEST(Gradient, TextIsReadAsTheNumberItBeginsWithAndOtherEntriesAsZero) {
  const PropertyList samples = list({text(" 0.5"), PropertyList::array(), PropertyList::real(1.9),
                                     PropertyList::boolean(true), PropertyList::integer(2), PropertyList()});
  VRTGradient gradient;
  ASSERT_TRUE(gradient.initWithStateValue(dict({{"rgbSamples", samples}})));
  EXPECT_EQ(*gradient.stateValue()->find("rgbSamples"), sampleArray(6, {0.5, 0, 1, 1, 2, 0}));
}

TEST(Gradient, RefusesStatesOfAnotherTypeAndStaysAsItWas) {
  PropertyList dictionaryInPlaceOfAlpha = gradientState({0, 0.5, 1, 0.5, 0.5, 0.5}, {});
  dictionaryInPlaceOfAlpha.set("alphaSamples", PropertyList());
  for (const PropertyList& state : {PropertyList::array(), PropertyList::integer(1), PropertyList::data({1, 2}),
                                    dict({{"rgbSamples", text("red")}}), dictionaryInPlaceOfAlpha}) {
    VRTGradient gradient;
    EXPECT_FALSE(gradient.initWithStateValue(state));
    EXPECT_EQ(gradient.stateValue(), VRTGradient::gradient()->stateValue());
  }
}

TEST(Gradient, AnArrayThatEndsWithinAGroupIsOutOfRange) {
  for (const auto& [key, groupSize] : {std::pair{"rgbSamples", 6}, std::pair{"alphaSamples", 4}}) {
    for (int missing = 1; missing < groupSize; ++missing) {
      PropertyList array = PropertyList::array();
      for (int i = 0; i < 2 * groupSize - missing; ++i) array.append(PropertyList::real(0.5));
      VRTGradient gradient;
      EXPECT_THROW(gradient.initWithStateValue(dict({{key, array}})), std::out_of_range)
          << key << " short by " << missing;
      EXPECT_EQ(gradient.stateValue(), VRTGradient::gradient()->stateValue());
    }
  }
}

TEST(Gradient, ACopySharesNothingWithItsSource) {
  const auto gradient = VRTGradient::gradient();
  const auto copy = std::dynamic_pointer_cast<VRTGradient>(gradient->copyWithZone());
  ASSERT_TRUE(copy);
  gradient->kxChannelGradient()->rgbFolder.addSample(1, 0, 0, 0.5, 0.5, 1);
  EXPECT_EQ(copy->stateValue(), VRTGradient::gradient()->stateValue());
  EXPECT_NE(copy->stateValue(), gradient->stateValue());
}

}  // namespace
