// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSKeyedArchiver.h"
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

}  // namespace
