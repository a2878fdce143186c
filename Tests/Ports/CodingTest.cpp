// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSArchiver.h"
#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "Platform/Foundation/NSValues.h"
#include "Registry/BrivoCompatability.h"
#include "Tests/Ports/StateValues.h"

#include <algorithm>
#include <string_view>

namespace {

const PropertyList someGradient =
    gradientState({0.7, 0.25, 1, 0.1, 0.2, 0.3, 0.1, 0.5, 0, 1, 0, -0.0}, {0, 0.5, 2, 0.4});
const PropertyList someLevels = distinctLevelsState();

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
      {"VRTGradient", "TarnGradient", someGradient},
      {"VRTHistogram", "TarnHistogram", someLevels},
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

PropertyList::Bytes renamed(PropertyList::Bytes bytes, std::string_view from, std::string_view to) {
  for (auto at = bytes.begin(); (at = std::search(at, bytes.end(), from.begin(), from.end())) != bytes.end();) {
    at = std::copy(to.begin(), to.end(), at);
  }
  return bytes;
}

// Written by a plug-in that is not here.
TEST(Coding, AnUnknownClassIsReadAsItsSuperclassAndWrittenBackAsThat) {
  const PropertyList gradient = gradientState({0.7, 0.25, 1, 0.1, 0.2, 0.3, 0.1, 0.5, 0, 1, 0, -0.0}, {0, 0.5, 2, 0.4});
  const auto object = std::dynamic_pointer_cast<VRTObject>(NSClassFromString("TarnGradient")->factory());
  ASSERT_TRUE(object->initWithStateValue(someGradient));
  std::string reason;
  const auto keyed = renamed(*NSKeyedArchiver::archivedData(object, PropertyListFormat::Binary, nullptr),
                             "TarnGradient", "AcmeGradient");
  const auto read = std::dynamic_pointer_cast<VRTGradient>(NSKeyedUnarchiver::unarchiveObject(keyed, &reason));
  ASSERT_TRUE(read) << reason;
  NSArchiver archiver;
  archiver.encodeObject(object);
  NSUnarchiver unarchiver;
  ASSERT_TRUE(unarchiver.initForReadingWithData(
      renamed(archiver.finishEncoding().value_or(PropertyList::Bytes()), "TarnGradient", "AcmeGradient")));
  for (const NSObjectRef& each : {NSObjectRef(read), unarchiver.decodeObject()}) {
    ASSERT_TRUE(each) << unarchiver.error();
    EXPECT_EQ(each->className(), "VRTGradient");
    EXPECT_EQ(std::dynamic_pointer_cast<VRTObject>(each)->stateValue(), someGradient);
    const auto again = NSKeyedArchiver::archivedData(each, PropertyListFormat::Xml, nullptr);
    EXPECT_NE(std::string(again->begin(), again->end()).find("<string>VRTGradient</string>"), std::string::npos);
    EXPECT_EQ(std::string(again->begin(), again->end()).find("AcmeGradient"), std::string::npos);
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
    EXPECT_TRUE(reason.starts_with("VRTGradient: ")) << reason;
    EXPECT_EQ(reason.find("vector"), std::string::npos) << reason;
  }
}

TEST(Coding, OtherEntriesOfAStateMayBeOfAnyClass) {
  for (const auto& [className, wanted] :
       {std::pair{"VRTGradient", someGradient}, std::pair{"VRTHistogram", someLevels}}) {
    auto entries = std::dynamic_pointer_cast<NSDictionary>(NSObjectFromPropertyList(wanted))->entries();
    entries.emplace_back("null", std::make_shared<NSNull>());
    entries.emplace_back("color", std::make_shared<QCColor>());
    const auto written = std::make_shared<Written>(className, std::make_shared<NSDictionary>(entries));
    std::string reason;
    const auto read = NSKeyedUnarchiver::unarchiveObject(
        *NSKeyedArchiver::archivedData(written, PropertyListFormat::Binary, nullptr), &reason);
    const auto object = std::dynamic_pointer_cast<VRTObject>(read);
    ASSERT_TRUE(object) << reason;
    EXPECT_EQ(object->stateValue(), wanted);
    entries.front().second = std::make_shared<NSNull>();
    const auto foreign = std::make_shared<Written>(className, std::make_shared<NSDictionary>(entries));
    EXPECT_FALSE(NSKeyedUnarchiver::unarchiveObject(
        *NSKeyedArchiver::archivedData(foreign, PropertyListFormat::Binary, nullptr), &reason));
    EXPECT_NE(reason.find("\"NSNull\", which is no property-list value"), std::string::npos) << reason;
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
