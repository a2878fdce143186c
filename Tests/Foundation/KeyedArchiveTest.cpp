// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSArchiver.h"
#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "Platform/Foundation/NSValues.h"
#include "Tests/Foundation/Cases.h"

#include <gtest/gtest.h>

namespace {

using P = PropertyList;
using Objects = std::vector<NSObjectRef>;

// An object with values under keys, values without keys, and numbers in place.
class Pair : public NSObject {
 public:
  std::string className() const override { return "TestPair"; }
  void encodeWithCoder(NSCoder& coder) const override {
    coder.encodeObject(first);
    coder.encodeObject(second);
    if (coder.allowsKeyedCoding()) {
      coder.encodeObject(named, "named");
      coder.encodeObject(named, "$named");
      coder.encodeDouble(0.1, "real");
      coder.encodeInt(-7, "integer");
      coder.encodeBool(true, "boolean");
    }
  }
  bool initWithCoder(NSCoder& coder) override {
    first = coder.decodeObject();
    second = coder.decodeObject();
    if (!coder.allowsKeyedCoding()) {
      return true;
    }
    named = coder.decodeObjectForKey("named");
    return coder.decodeObjectForKey("$named") == named && coder.decodeDoubleForKey("real") == 0.1 &&
           coder.decodeIntForKey("integer") == -7 && coder.decodeBoolForKey("boolean") &&
           !coder.containsValueForKey("other") && coder.decodeObjectForKey("other") == nullptr;
  }
  NSObjectRef first, second, named;
};
const NSClassRegistration pairClass("TestPair", "NSObject", [] { return std::make_shared<Pair>(); });

// Holds an archive that it opens while it is read itself.
class Nest : public NSObject {
 public:
  std::string className() const override { return "TestNest"; }
  bool initWithCoder(NSCoder& coder) override {
    const auto data = std::dynamic_pointer_cast<NSData>(coder.decodeObjectForKey("inner"));
    std::string reason;
    if (data && !NSKeyedUnarchiver::unarchiveObject(data->bytes(), &reason)) {
      coder.fail(reason);
    }
    return coder.error().empty();
  }
  void encodeWithCoder(NSCoder& coder) const override { coder.encodeObject(inner, "inner"); }
  NSObjectRef inner;
};
const NSClassRegistration nestClass("TestNest", "NSObject", [] { return std::make_shared<Nest>(); });

NSObjectRef text(const char* utf8) {
  return NSString::stringWithUTF8String(utf8);
}
NSObjectRef array(Objects objects) {
  return std::make_shared<NSArray>(std::move(objects));
}

NSObjectRef everyValue() {
  const auto shared = array({text("in"), nullptr});
  return std::make_shared<NSDictionary>(NSDictionary::Entries{
      {"zebra", NSNumber::numberWithDouble(-0.0)},
      {"one", NSNumber::numberWithInt(1)},
      {"one.", NSNumber::numberWithDouble(1)},
      {"yes", NSNumber::numberWithBool(true)},
      {"big", std::make_shared<NSNumber>(P::unsignedInteger(~std::uint64_t{0}))},
      {"data", std::make_shared<NSData>(P::Bytes{1, 2})},
      {"mutable", std::make_shared<NSMutableData>(P::Bytes{3})},
      {"date", std::make_shared<NSDate>(1.25)},
      {"null", std::make_shared<NSNull>()},
      {"$null", array({text("$null"), text("$class")})},
      {"a", shared},
      {"b", shared},
      {"empty", array({})},
  });
}

TEST(KeyedArchive, ObjectsComeBackAsTheyWere) {
  auto pair = std::make_shared<Pair>();
  pair->first = everyValue();
  pair->named = array({pair->first});
  for (const PropertyListFormat format : {PropertyListFormat::Xml, PropertyListFormat::Binary}) {
    std::string reason;
    const auto bytes = NSKeyedArchiver::archivedData(pair, format, &reason);
    ASSERT_TRUE(bytes) << reason;
    const auto back = std::dynamic_pointer_cast<Pair>(NSKeyedUnarchiver::unarchiveObject(*bytes, &reason));
    ASSERT_TRUE(back) << reason;
    EXPECT_EQ(back->second, nullptr);
    EXPECT_EQ(static_cast<const NSArray&>(*back->named).objects()[0], back->first);
    EXPECT_TRUE(back->first->isEqual(*pair->first));
    const auto& values = static_cast<const NSDictionary&>(*back->first);
    EXPECT_EQ(values.objectForKey("a"), values.objectForKey("b"));
    EXPECT_EQ(values.objectForKey("mutable")->className(), "NSMutableData");
    EXPECT_EQ(values.objectForKey("data")->className(), "NSData");
    EXPECT_EQ(values.entries()[0].first, "zebra");
  }
}

TEST(KeyedArchive, HasTheLayoutThatOthersRead) {
  NSKeyedArchiver archiver(PropertyListFormat::Xml);
  archiver.encodeObject(std::make_shared<NSMutableData>(P::Bytes{9}));
  archiver.encodeObject(text("plain"));
  archiver.encodeObject(NSNumber::numberWithInt(3), "number");
  archiver.encodeObject(text("plain"), "again");
  archiver.encodeObject(NSNumber::numberWithInt(3), "same");
  archiver.encodeObject(NSNumber::numberWithDouble(3), "real");
  archiver.encodeObject(nullptr, "nil");
  archiver.encodeObject(text("$null"), "text");
  const auto bytes = archiver.finishEncoding();
  ASSERT_TRUE(bytes) << archiver.error();
  const auto expected = PropertyListFromBytes(
      keyedArchive(
          "$0=@1 $1=@3 number=@4 again=@3 same=@4 real=@5 nil=@0 text=@6 ; {NS.data=<data>CQ==</data> $class=@2} "
          "{$classname=\"NSMutableData\" $classes=[\"NSMutableData\" \"NSData\" \"NSObject\"]} \"plain\" #3 "
          "<real>3</real> {NS.string=\"$null\" $class=@7} {$classname=\"NSString\" $classes=[\"NSString\" "
          "\"NSObject\"]}"),
      nullptr);
  ASSERT_TRUE(expected);
  EXPECT_EQ(compactXml(*PropertyListFromBytes(*bytes, nullptr)), compactXml(*expected));
}

TEST(KeyedArchive, WritersRefuseWithAReason) {
  auto circle = std::make_shared<Pair>();
  circle->first = circle;
  NSObjectRef deep = text("bottom");
  for (int i = 0; i < 3000; ++i) {
    deep = array({deep});
  }
  for (const NSObjectRef& each : {NSObjectRef(circle), deep, text("\xFF")}) {
    std::string reason;
    EXPECT_FALSE(NSKeyedArchiver::archivedData(each, PropertyListFormat::Binary, &reason));
    EXPECT_FALSE(reason.empty());
    NSArchiver plain;
    plain.encodeObject(each);
    EXPECT_FALSE(plain.finishEncoding());
  }
  circle->first = nullptr;
  NSKeyedArchiver twice;
  twice.encodeInt(1, "key");
  twice.encodeInt(2, "key");
  EXPECT_FALSE(twice.finishEncoding());
}

TEST(KeyedArchive, NestingAndSharingAreBounded) {
  std::string deep = "root=@1 ;", wide = deep;
  for (int i = 0; i < 3000; ++i) {
    deep += " {NS.objects=[@" + std::to_string(i + 2) + "] $class=@3002}";
  }
  for (int i = 0; i < 200; ++i) {  // 2^200 paths, 200 objects
    const std::string next = " @" + std::to_string(i + 2);
    wide += " {NS.objects=[" + next + next + "] $class=@202}";
  }
  std::string reason;
  EXPECT_EQ(NSKeyedUnarchiver::unarchiveObject(keyedArchive(deep + " \"end\" %NSArray"), &reason), nullptr);
  EXPECT_NE(reason.find("too deeply"), std::string::npos) << reason;
  const NSObjectRef root = NSKeyedUnarchiver::unarchiveObject(keyedArchive(wide + " \"end\" %NSArray"), &reason);
  ASSERT_TRUE(root) << reason;
  EXPECT_FALSE(NSPropertyListFromObject(root.get()));
}

TEST(KeyedArchive, ArchivesWithinArchivesAreBounded) {
  const auto nested = [](int depth) {
    NSObjectRef inner = text("core");
    P::Bytes bytes;
    for (int i = 0; i < depth; ++i) {
      bytes = NSKeyedArchiver::archivedData(inner, PropertyListFormat::Binary, nullptr).value_or(P::Bytes());
      auto nest = std::make_shared<Nest>();
      nest->inner = std::make_shared<NSData>(bytes);
      inner = nest;
    }
    return bytes;
  };
  std::string reason;
  EXPECT_TRUE(NSKeyedUnarchiver::unarchiveObject(nested(10), &reason)) << reason;
  EXPECT_FALSE(NSKeyedUnarchiver::unarchiveObject(nested(300), &reason));
  EXPECT_NE(reason.find("too deeply"), std::string::npos) << reason;
  EXPECT_TRUE(NSKeyedUnarchiver::unarchiveObject(nested(2), &reason)) << "the count is taken back";
}

TEST(PlainArchive, ObjectsComeBackInTheirOrder) {
  auto pair = std::make_shared<Pair>();
  pair->first = everyValue();
  NSArchiver archiver;
  for (const NSObjectRef& each : {NSObjectRef(pair), NSObjectRef(), pair->first}) {
    archiver.encodeObject(each);
  }
  const auto bytes = archiver.finishEncoding();
  ASSERT_TRUE(bytes) << archiver.error();
  NSUnarchiver unarchiver;
  ASSERT_TRUE(unarchiver.initForReadingWithData(*bytes)) << unarchiver.error();
  const auto back = std::dynamic_pointer_cast<Pair>(unarchiver.decodeObject());
  ASSERT_TRUE(back) << unarchiver.error();
  EXPECT_TRUE(back->first->isEqual(*pair->first) && back->second == nullptr);
  EXPECT_EQ(unarchiver.decodeObject(), nullptr);
  EXPECT_EQ(unarchiver.decodeObject(), back->first);
  EXPECT_EQ(unarchiver.error(), "");
  EXPECT_EQ(unarchiver.decodeObject(), nullptr);
  EXPECT_NE(unarchiver.error(), "");
}

class PlainArchiveDamage : public testing::TestWithParam<Case> {};
INSTANTIATE_TEST_SUITE_P(Archives, PlainArchiveDamage, testing::ValuesIn(casesOf("Damaged/plain-archives.txt")));

TEST_P(PlainArchiveDamage, IsRefusedWithItsReason) {
  NSUnarchiver unarchiver;
  unarchiver.initForReadingWithData(listInNotation(GetParam().input));
  EXPECT_EQ(unarchiver.decodeObject(), nullptr);
  EXPECT_NE(unarchiver.error().find(GetParam().expected), std::string::npos) << unarchiver.error();
}

}  // namespace
