// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSArchiver.h"
#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "Platform/Foundation/NSValues.h"
#include "Registry/BrivoCompatability.h"
#include "Tests/Ports/StateValues.h"

namespace {

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
