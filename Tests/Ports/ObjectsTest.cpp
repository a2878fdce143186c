// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradient.h"
#include "Platform/Foundation/NSArchiver.h"
#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSCoder.h"
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "Platform/Foundation/NSValues.h"
#include "Ports/VRTObjects.h"
#include "Registry/BrivoCompatability.h"
#include "Tests/Support/Lists.h"

#include <stdexcept>

namespace {

// States written out by hand, as documents hold them.

// Entries of gradient arrays: every third one of a group is the interpolation, an integer.
PropertyList sampleArray(std::size_t groupSize, std::initializer_list<double> entries) {
  PropertyList array = PropertyList::array();
  std::size_t index = 0;
  for (const double entry : entries) {
    const bool isInterpolation = index++ % groupSize == 2;
    array.append(isInterpolation ? PropertyList::integer(static_cast<int>(entry)) : PropertyList::real(entry));
  }
  return array;
}

PropertyList gradientState(std::initializer_list<double> rgbSamples, std::initializer_list<double> alphaSamples) {
  return dict({{"rgbSamples", sampleArray(6, rgbSamples)}, {"alphaSamples", sampleArray(4, alphaSamples)}});
}

constexpr std::array<const char*, 26> kLevelsKeys{
    "selectedChannel", "blackInRGB",   "blackOutRGB",   "whiteInRGB",   "whiteOutRGB",   "gammaRGB",
    "blackInRed",      "blackOutRed",  "whiteInRed",    "whiteOutRed",  "gammaRed",      "blackInGreen",
    "blackOutGreen",   "whiteInGreen", "whiteOutGreen", "gammaGreen",   "blackInBlue",   "blackOutBlue",
    "whiteInBlue",     "whiteOutBlue", "gammaBlue",     "blackInAlpha", "blackOutAlpha", "whiteInAlpha",
    "whiteOutAlpha",   "gammaAlpha",
};

// A different value under every key, so that no two can be mistaken for each other.
PropertyList distinctLevelsState() {
  PropertyList state;
  for (std::size_t i = 0; i < kLevelsKeys.size(); ++i) {
    state.set(kLevelsKeys[i],
              i == 0 ? PropertyList::integer(3) : PropertyList::real(0.125 * static_cast<double>(i) - 1));
  }
  return state;
}

// A value object in an archive with a state that it would not write itself.
class Written : public NSObject {
 public:
  Written(std::string className, NSObjectRef state) : className_(std::move(className)), state_(std::move(state)) {}
  std::string className() const override { return className_; }
  void encodeWithCoder(NSCoder& coder) const override {
    if (state_) coder.encodeObject(state_, "state");
  }

 private:
  std::string className_;
  NSObjectRef state_;
};

// The first entries of a table, and the last.
template <class Stored>
std::vector<Stored> ends(std::vector<Stored> table) {
  table.erase(table.begin() + 4, table.end() - 4);
  return table;
}

TEST(Gradient, StartsWhiteToBlackAndOpaque) {
  const auto gradient = VRTGradient::gradient();
  EXPECT_EQ(gradient->stateValue(), gradientState({0, 0.5, 2, 1, 1, 1, 1, 0.5, 2, 0, 0, 0}, {0, 0.5, 2, 1}));
  std::vector<std::uint8_t> bytes(256 * 4);
  gradient->getGradient8(bytes.data(), 256);
  EXPECT_EQ(ends(bytes), (std::vector<std::uint8_t>{255, 255, 255, 255, 255, 0, 0, 0}));
  std::vector<std::uint16_t> words(2 * 4);
  gradient->getGradient16(words.data(), 2);
  EXPECT_EQ(words, (std::vector<std::uint16_t>{255, 255, 255, 255, 255, 0, 0, 0}));
  std::vector<float> floats(2 * 4);
  gradient->getGradientFloat(floats.data(), 2);
  for (std::size_t i = 0; i < 8; ++i) EXPECT_NEAR(floats[i], i < 5, 1e-7) << i;  // smooth segments are solved to within
}

// Each state starts from the defaults again, not from what the gradient held.
TEST(Gradient, KeepsWhatStandsInTheStateAndTheDefaultsForWhatDoesNot) {
  const double inf = std::numeric_limits<double>::infinity();
  const PropertyList defaults = *VRTGradient::gradient()->stateValue();
  const PropertyList alpha = sampleArray(4, {0, 0.5, 1, 0.25}), colors = *defaults.find("rgbSamples");
  // Out of order, at equal positions, outside 0 to 1, of an unknown kind, and with a negative zero.
  const PropertyList odd =
      gradientState({0.9, 0.1, 1, 0.25, 1e-300, 17.123456789012345, 0.2, 0.5, 0, -0.0, 1, inf, 0.2, 0.5, 99, -3, 0, 0},
                    {2.5, 0.75, 2, 0.5, -1, 0.5, 1, 0.25});
  const PropertyList noNumbers = list({text("0.5"), PropertyList::array(), PropertyList::real(1.9),
                                       PropertyList::boolean(true), PropertyList::integer(2), PropertyList()});
  const std::pair<PropertyList, PropertyList> rows[] = {
      {odd, odd},
      {dict({{"alphaSamples", alpha}}), dict({{"rgbSamples", colors}, {"alphaSamples", alpha}})},
      {PropertyList(), defaults},
      {dict({{"rgbSamples", noNumbers}}),
       dict({{"rgbSamples", sampleArray(6, {0, 0, 1, 1, 2, 0})}, {"alphaSamples", *defaults.find("alphaSamples")}})},
      {gradientState({}, {}), gradientState({}, {})},
  };
  VRTGradient gradient;
  for (const auto& [state, expected] : rows) {
    ASSERT_TRUE(gradient.initWithStateValue(state));
    EXPECT_EQ(gradient.stateValue(), expected);
    std::vector<float> table(16 * 4);
    gradient.getGradientFloat(table.data(), 16);  // what it yields is the channel's to say; it must not crash
  }
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

TEST(Histogram, WritesItsKeysInOrder) {
  const PropertyList state = *VRTHistogram::histogram()->stateValue();
  ASSERT_EQ(state.entries().size(), kLevelsKeys.size());
  for (std::size_t i = 0; i < kLevelsKeys.size(); ++i) {
    const std::string key = kLevelsKeys[i];
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

TEST(Histogram, AMissingOrForeignValueReadsAsZero) {
  PropertyList state;
  for (const char* key : kLevelsKeys) {
    if (std::string(key) != "gammaRed") state.set(key, PropertyList::real(2));
  }
  state.set("whiteInBlue", PropertyList::string("1"));
  VRTHistogram levels;
  ASSERT_TRUE(levels.initWithStateValue(state));
  EXPECT_EQ(levels.gammaForChannel(1), 0);
  EXPECT_EQ(levels.whiteInForChannel(3), 0);
  EXPECT_EQ(levels.gammaForChannel(2), 2);
  EXPECT_EQ(levels.selectedChannel(), 2);

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

std::shared_ptr<VRTOpaqueData> restored(const PropertyList& state) {
  auto data = VRTOpaqueData::data();
  return data->initWithStateValue(state) ? data : nullptr;
}

TEST(OpaqueData, StateIsAnArchiveOfTheValueWithoutAKeyAndMayNameItsRoot) {
  const auto grain = NSString::stringWithUTF8String("grain");
  const auto state = VRTOpaqueData::dataWithValue(grain)->stateValue();
  ASSERT_TRUE(state && state->isMutableData());
  std::string reason;
  const auto archive = PropertyListFromBytes(state->bytes(), &reason);
  ASSERT_TRUE(archive && archive->find("$top")) << reason;
  EXPECT_EQ(archive->find("$top")->entries().size(), 1U);
  EXPECT_TRUE(archive->find("$top")->find("$0"));
  const auto named = NSKeyedArchiver::archivedData(grain, PropertyListFormat::Xml, &reason);
  ASSERT_TRUE(named) << reason;
  const auto data = restored(PropertyList::data(*named));
  ASSERT_TRUE(data);
  EXPECT_TRUE(data->value()->isEqual(*grain));
}

TEST(OpaqueData, CarriesAnyArchivableObject) {
  const NSObjectRef values[] = {
      nullptr, NSString::stringWithUTF8String(""), NSNumber::numberWithDouble(-0.0),
      NSObjectFromPropertyList(PropertyList::array({PropertyList::integer(1), PropertyList::data({0, 255})}))};
  for (const NSObjectRef& value : values) {
    const auto copy = std::dynamic_pointer_cast<VRTOpaqueData>(VRTOpaqueData::dataWithValue(value)->copyWithZone());
    ASSERT_TRUE(copy);
    ASSERT_EQ(copy->value() == nullptr, value == nullptr);
    if (value) {
      EXPECT_TRUE(copy->value()->isEqual(*value));
    }
  }
  const auto inner = VRTHistogram::histogram();
  inner->setGamma(2.5, 1);
  const auto copy = restored(*VRTOpaqueData::dataWithValue(inner)->stateValue());
  ASSERT_TRUE(copy);
  const auto levels = std::dynamic_pointer_cast<VRTHistogram>(copy->value());
  ASSERT_TRUE(levels);
  EXPECT_EQ(levels->gammaForChannel(1), 2.5);
}

TEST(OpaqueData, RefusesWhatIsNoArchive) {
  EXPECT_FALSE(restored(PropertyList()));
  EXPECT_FALSE(restored(PropertyList::string("bplist00")));
  EXPECT_FALSE(restored(PropertyList::data({})));
  EXPECT_FALSE(restored(PropertyList::data({'b', 'p', 'l', 'i', 's', 't', '0', '0', 0, 1, 2})));
  auto bytes = VRTOpaqueData::dataWithValue(NSString::stringWithUTF8String("x"))->stateValue()->bytes();
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    restored(PropertyList::data({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)}));
  }
  const PropertyList::Bytes half(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size() / 2));
  EXPECT_FALSE(restored(PropertyList::data(half)));
}

TEST(OpaqueData, NestingEndsBeforeTheStackDoes) {
  NSObjectRef value = NSNumber::numberWithInt(1);
  for (int level = 0; level < 5000; ++level) value = VRTOpaqueData::dataWithValue(value);
  EXPECT_FALSE(std::dynamic_pointer_cast<VRTOpaqueData>(value)->stateValue());

  // The same as a document would hold it: archives inside archives.
  PropertyList::Bytes bytes = VRTOpaqueData::data()->stateValue()->bytes();
  for (int level = 0; level < 500; ++level) {
    NSKeyedArchiver archiver;
    archiver.encodeObject(
        std::make_shared<Written>("VRTOpaqueData", std::make_shared<NSMutableData>(std::move(bytes))));
    bytes = archiver.finishEncoding().value();
    if (level == 10) {
      EXPECT_TRUE(restored(PropertyList::data(bytes)));
    }
  }
  EXPECT_FALSE(restored(PropertyList::data(bytes)));

  const auto self = VRTOpaqueData::data();
  self->initWithValue(self);
  EXPECT_FALSE(self->stateValue());
  EXPECT_FALSE(self->copyWithZone());
  self->initWithValue(nullptr);
}

struct Named {
  std::string className, olderName;
  PropertyList state;
};

void expectSame(const NSObjectRef& decoded, const std::string& name, const Named& row) {
  const auto object = std::dynamic_pointer_cast<VRTObject>(decoded);
  ASSERT_TRUE(object) << name;
  EXPECT_EQ(object->className(), name);
  EXPECT_TRUE(object->isKindOfClass(row.className));
  EXPECT_EQ(object->stateValue(), row.state);
}

TEST(Coding, SurvivesEveryCoderUnderEitherName) {
  const auto opaque = VRTOpaqueData::dataWithValue(NSString::stringWithUTF8String("opaque"));
  const Named rows[] = {
      {"VRTGradient", "TarnGradient",
       gradientState({0.7, 0.25, 1, 0.1, 0.2, 0.3, 0.1, 0.5, 0, 1, 0, -0.0}, {0, 0.5, 2, 0.4})},
      {"VRTHistogram", "TarnHistogram", distinctLevelsState()},
      {"VRTOpaqueData", "TarnOpaqueData", *opaque->stateValue()},
  };
  for (const Named& row : rows) {
    for (const std::string& name : {row.className, row.olderName}) {
      const auto object = std::dynamic_pointer_cast<VRTObject>(NSClassFromString(name)->factory());
      ASSERT_TRUE(object->initWithStateValue(row.state));
      expectSame(object->copyWithZone(), name, row);
      std::string reason;
      for (const auto format : {PropertyListFormat::Xml, PropertyListFormat::Binary}) {
        const auto bytes = NSKeyedArchiver::archivedData(object, format, &reason);
        ASSERT_TRUE(bytes) << reason;
        expectSame(NSKeyedUnarchiver::unarchiveObject(*bytes, &reason), name, row);
      }
      NSArchiver archiver;
      archiver.encodeObject(object);
      const auto bytes = archiver.finishEncoding();
      ASSERT_TRUE(bytes) << archiver.error();
      NSUnarchiver unarchiver;
      ASSERT_TRUE(unarchiver.initForReadingWithData(*bytes));
      expectSame(unarchiver.decodeObject(), name, row);
    }
  }
}

TEST(Coding, AStateThatDoesNotFitDecodesToNothing) {
  const NSObjectRef states[] = {nullptr, NSObjectFromPropertyList(gradientState({0, 0.5, 1, 0.5}, {})),
                                NSString::stringWithUTF8String("x"), std::make_shared<NSNull>()};
  for (const NSObjectRef& state : states) {
    std::string reason;
    const auto bytes = NSKeyedArchiver::archivedData(std::make_shared<Written>("VRTGradient", state),
                                                     PropertyListFormat::Binary, &reason);
    ASSERT_TRUE(bytes) << reason;
    EXPECT_FALSE(NSKeyedUnarchiver::unarchiveObject(*bytes, &reason));
  }
}

TEST(Coding, AValueThatCannotBeWrittenFailsTheArchiveInsteadOfVanishing) {
  auto self = VRTOpaqueData::data();
  self->initWithValue(self);
  std::string reason;
  EXPECT_FALSE(NSKeyedArchiver::archivedData(self, PropertyListFormat::Binary, &reason));
  EXPECT_NE(reason.find("VRTOpaqueData"), std::string::npos) << reason;
  self->initWithValue(nullptr);
}

}  // namespace
