// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "Platform/Foundation/NSValues.h"
#include "Ports/VRTObjects.h"
#include "Tests/Ports/StateValues.h"

namespace {

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
  const auto bytes = VRTOpaqueData::dataWithValue(NSString::stringWithUTF8String("x"))->stateValue()->bytes();
  const PropertyList::Bytes half(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size() / 2));
  EXPECT_FALSE(restored(PropertyList::data(half)));
}

// An archive of as many objects as are given, which share one state.
PropertyList::Bytes archiveOfSharers(const char* className, const NSObjectRef& state, int count) {
  std::vector<NSObjectRef> objects;
  for (int i = 0; i < count; ++i) objects.push_back(std::make_shared<Written>(className, state));
  return *NSKeyedArchiver::archivedData(std::make_shared<NSArray>(objects), PropertyListFormat::Binary, nullptr);
}

TEST(OpaqueData, WhatManyShareIsPaidForByEachOfThem) {
  PropertyList::Bytes nested = VRTOpaqueData::data()->stateValue()->bytes();
  for (int level = 0; level < 7; ++level) {
    nested = archiveOfSharers("VRTOpaqueData", std::make_shared<NSMutableData>(nested), 8);
    if (level == 3) {
      EXPECT_TRUE(NSKeyedUnarchiver::unarchiveObject(nested, nullptr)) << "4096 in all";
    }
  }
  NSObjectRef samples = NSNumber::numberWithInt(0);
  for (int level = 0; level < 19; ++level) samples = std::make_shared<NSArray>(std::vector<NSObjectRef>(2, samples));
  samples = std::make_shared<NSArray>(std::vector<NSObjectRef>(6, samples));
  const auto state = std::make_shared<NSDictionary>(NSDictionary::Entries{{"rgbSamples", samples}});
  const PropertyList::Bytes gradients = archiveOfSharers("VRTGradient", state, 60);
  for (const PropertyList::Bytes& each : {nested, gradients}) {
    EXPECT_LT(each.size(), 4096U);
    std::string reason;
    EXPECT_FALSE(NSKeyedUnarchiver::unarchiveObject(each, &reason));
    EXPECT_NE(reason.find("unfolds to more values"), std::string::npos) << reason;
    EXPECT_EQ(reason.find(": VRT"), std::string::npos) << reason;
  }
  EXPECT_TRUE(NSKeyedUnarchiver::unarchiveObject(archiveOfSharers("VRTGradient", std::make_shared<NSDictionary>(), 60),
                                                 nullptr))
      << "every reading begins with a budget of its own";

  // The same as a graph that is written: two of each level hold the same two of the one below.
  NSObjectRef graph = NSString::stringWithUTF8String("end");
  for (int level = 0; level < 14; ++level) {
    std::vector<NSObjectRef> holders;
    for (int i = 0; i < 8; ++i) holders.push_back(VRTOpaqueData::dataWithValue(graph));
    graph = std::make_shared<NSArray>(holders);
  }
  EXPECT_FALSE(VRTOpaqueData::dataWithValue(graph)->stateValue());
}

TEST(OpaqueData, NestingEndsBeforeTheStackDoes) {
  NSObjectRef value = NSNumber::numberWithInt(1);
  for (int level = 0; level < 5000; ++level) value = VRTOpaqueData::dataWithValue(value);
  EXPECT_FALSE(std::dynamic_pointer_cast<VRTOpaqueData>(value)->stateValue());

  const auto self = VRTOpaqueData::data();
  self->initWithValue(self);
  EXPECT_FALSE(self->stateValue());
  EXPECT_FALSE(self->copyWithZone());
  self->initWithValue(nullptr);
}

}  // namespace
