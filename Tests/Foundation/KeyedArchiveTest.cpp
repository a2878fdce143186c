// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSArchiver.h"
#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSCoder.h"
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "Platform/Foundation/NSValues.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using P = PropertyList;

// An object with a value under a key, values without keys, and numbers in place.
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

class Refuser : public NSObject {
 public:
  std::string className() const override { return "TestRefuser"; }
  bool initWithCoder(NSCoder&) override { return false; }
};
const NSClassRegistration refuserClass("TestRefuser", "NSObject", [] { return std::make_shared<Refuser>(); });

class Thrower : public NSObject {
 public:
  std::string className() const override { return "TestThrower"; }
  bool initWithCoder(NSCoder&) override { throw std::out_of_range("index 6 beyond bounds"); }
};
const NSClassRegistration throwerClass("TestThrower", "NSObject", [] { return std::make_shared<Thrower>(); });
const NSClassRegistration abstractClass("TestAbstract", "NSObject", nullptr);

// Holds an archive that it opens while it is read itself.
class Nest : public NSObject {
 public:
  std::string className() const override { return "TestNest"; }
  bool initWithCoder(NSCoder& coder) override {
    const auto data = std::dynamic_pointer_cast<NSData>(coder.decodeObjectForKey("inner"));
    std::string reason;
    if (data && !NSKeyedUnarchiver::unarchiveObject(data->bytes(), &reason)) {
      coder.fail(reason);
      return false;
    }
    return true;
  }
  void encodeWithCoder(NSCoder& coder) const override { coder.encodeObject(inner, "inner"); }
  NSObjectRef inner;
};
const NSClassRegistration nestClass("TestNest", "NSObject", [] { return std::make_shared<Nest>(); });

NSObjectRef text(const char* utf8) {
  return NSString::stringWithUTF8String(utf8);
}

NSObjectRef everyValue() {
  const auto shared = std::make_shared<NSArray>(std::vector<NSObjectRef>{text("in"), nullptr});
  return std::make_shared<NSDictionary>(NSDictionary::Entries{
      {"zebra", NSNumber::numberWithDouble(-0.0)},
      {"apple", NSNumber::numberWithDouble(0.1)},
      {"one", NSNumber::numberWithInt(1)},
      {"one.", NSNumber::numberWithDouble(1)},
      {"yes", NSNumber::numberWithBool(true)},
      {"big", std::make_shared<NSNumber>(P::unsignedInteger(~std::uint64_t{0}))},
      {"data", std::make_shared<NSData>(P::Bytes{1, 2})},
      {"mutable", std::make_shared<NSMutableData>(P::Bytes{3})},
      {"date", std::make_shared<NSDate>(1.25)},
      {"null", std::make_shared<NSNull>()},
      {"a", shared},
      {"b", shared},
      {"empty", std::make_shared<NSArray>()},
  });
}

P xmlArchive(const std::string& top, const std::string& objects) {
  const std::string document =
      "<plist><dict><key>$archiver</key><string>NSKeyedArchiver</string><key>$version</key><integer>100000</integer>"
      "<key>extra</key><true/><key>$top</key><dict>" +
      top + "</dict><key>$objects</key><array><string>$null</string>" + objects + "</array></dict></plist>";
  std::string reason;
  const auto list = PropertyListFromBytes(P::Bytes(document.begin(), document.end()), &reason);
  EXPECT_TRUE(list) << reason << "\n" << document;
  return list.value_or(P());
}

std::string uid(int value) {
  return "<dict><key>CF$UID</key><integer>" + std::to_string(value) + "</integer></dict>";
}
std::string entry(const std::string& key, const std::string& value) {
  return "<key>" + key + "</key>" + value;
}
std::string object(int classReference, const std::string& entries) {
  return "<dict>" + entries + entry("$class", uid(classReference)) + "</dict>";
}
std::string classOf(std::initializer_list<const char*> names) {
  std::string chain;
  for (const char* each : names) {
    chain += std::string("<string>") + each + "</string>";
  }
  return "<dict><key>$classname</key><string>" + std::string(*names.begin()) + "</string><key>$classes</key><array>" +
         chain + "</array></dict>";
}

NSObjectRef decode(const P& archive, std::string* reason) {
  NSKeyedUnarchiver unarchiver;
  unarchiver.initForReadingWithPropertyList(archive);
  NSObjectRef root = unarchiver.decodeObject();
  *reason = unarchiver.error();
  return root;
}

class KeyedArchives : public testing::TestWithParam<PropertyListFormat> {};
INSTANTIATE_TEST_SUITE_P(Formats, KeyedArchives, testing::Values(PropertyListFormat::Xml, PropertyListFormat::Binary),
                         [](const auto& each) { return each.param == PropertyListFormat::Xml ? "Xml" : "Binary"; });

TEST_P(KeyedArchives, ValuesComeBackAsTheyWere) {
  std::string reason;
  const NSObjectRef original = everyValue();
  const auto bytes = NSKeyedArchiver::archivedData(original, GetParam(), &reason);
  ASSERT_TRUE(bytes) << reason;
  const auto back = std::dynamic_pointer_cast<NSDictionary>(NSKeyedUnarchiver::unarchiveObject(*bytes, &reason));
  ASSERT_TRUE(back) << reason;
  EXPECT_TRUE(back->isEqual(*original));
  EXPECT_EQ(back->objectForKey("a"), back->objectForKey("b"));
  EXPECT_EQ(back->objectForKey("mutable")->className(), "NSMutableData");
  EXPECT_EQ(back->objectForKey("data")->className(), "NSData");
  EXPECT_EQ(back->entries()[0].first, "zebra");
}

TEST_P(KeyedArchives, ObjectsOfRegisteredClassesComeBack) {
  auto pair = std::make_shared<Pair>();
  pair->first = text("one");
  pair->named = std::make_shared<NSArray>(std::vector<NSObjectRef>{pair->first});
  std::string reason;
  const auto bytes = NSKeyedArchiver::archivedData(pair, GetParam(), &reason);
  ASSERT_TRUE(bytes) << reason;
  const auto back = std::dynamic_pointer_cast<Pair>(NSKeyedUnarchiver::unarchiveObject(*bytes, &reason));
  ASSERT_TRUE(back) << reason;
  EXPECT_TRUE(back->first->isEqual(*pair->first));
  EXPECT_EQ(back->second, nullptr);
  EXPECT_TRUE(back->named->isEqual(*pair->named));
  EXPECT_EQ(static_cast<const NSArray&>(*back->named).objects()[0], back->first);
}

TEST(KeyedArchive, HasTheLayoutThatOthersRead) {
  NSKeyedArchiver archiver(PropertyListFormat::Xml);
  archiver.encodeObject(std::make_shared<NSMutableData>(P::Bytes{9}));
  archiver.encodeObject(text("plain"));
  archiver.encodeObject(NSNumber::numberWithInt(3), "number");
  archiver.encodeObject(text("plain"), "again");
  archiver.encodeObject(nullptr, "nil");
  const auto bytes = archiver.finishEncoding();
  ASSERT_TRUE(bytes) << archiver.error();
  const auto list = PropertyListFromBytes(*bytes, nullptr);
  ASSERT_TRUE(list);
  P top, data, description;
  top.set("$0", P::uid(1));
  top.set("$1", P::uid(3));
  top.set("number", P::uid(4));
  top.set("again", P::uid(3));
  top.set("nil", P::uid(0));
  data.set("NS.data", P::data({9}));
  data.set("$class", P::uid(2));
  description.set("$classname", P::string("NSMutableData"));
  description.set("$classes", P::array({P::string("NSMutableData"), P::string("NSData"), P::string("NSObject")}));
  P expected;
  expected.set("$archiver", P::string("NSKeyedArchiver"));
  expected.set("$version", P::integer(100000));
  expected.set("$top", top);
  expected.set("$objects", P::array({P::string("$null"), data, description, P::string("plain"), P::integer(3)}));
  EXPECT_TRUE(*list == expected) << std::string(bytes->begin(), bytes->end());
}

TEST(KeyedArchive, WritersRefuseWithAReason) {
  auto circle = std::make_shared<Pair>();
  circle->first = circle;
  NSObjectRef deep = text("bottom");
  for (int i = 0; i < 3000; ++i) {
    deep = std::make_shared<NSArray>(std::vector<NSObjectRef>{deep});
  }
  for (const NSObjectRef& each : {NSObjectRef(circle), deep, text("\xFF")}) {
    std::string reason;
    EXPECT_FALSE(NSKeyedArchiver::archivedData(each, PropertyListFormat::Binary, &reason));
    EXPECT_FALSE(reason.empty());
  }
  circle->first = nullptr;
  NSKeyedArchiver twice;
  twice.encodeInt(1, "key");
  twice.encodeInt(2, "key");
  EXPECT_FALSE(twice.finishEncoding());
}

TEST(KeyedArchive, WhatOtherWritersMakeIsRead) {
  const P archive = xmlArchive(
      entry("root", uid(1)) + entry("inline", "<real>2.5</real>"),
      object(2, entry("NS.objects", "<array>" + uid(3) + uid(5) + uid(7) + uid(8) + uid(10) + uid(11) + uid(3) +
                                        "<integer>4</integer></array>") +
                    entry("unknown", "<true/>")) +
          classOf({"__NSArrayM", "NSMutableArray", "NSArray", "NSObject"}) +
          object(4, entry("NS.string", "<string>mutable text</string>")) +
          classOf({"NSMutableString", "NSString", "NSObject"}) + object(6, entry("NS.bytes", "<data>Ynl0ZXM=</data>")) +
          classOf({"__NSCFString", "NSMutableString", "NSString", "NSObject"}) + "<date>2001-01-01T00:00:10Z</date>" +
          object(9, entry("NS.keys", "<array>" + uid(12) + "</array>") +
                        entry("NS.objects", "<array>" + uid(3) + "</array>")) +
          classOf({"NSMutableDictionary", "NSDictionary", "NSObject"}) + "<data>AAE=</data>" +
          object(13, entry("NS.data", uid(10))) + "<string>k</string>" +
          classOf({"NSConcreteMutableData", "NSMutableData", "NSData", "NSObject"}));
  NSKeyedUnarchiver unarchiver;
  ASSERT_TRUE(unarchiver.initForReadingWithPropertyList(archive)) << unarchiver.error();
  EXPECT_EQ(unarchiver.decodeDoubleForKey("inline"), 2.5);
  const auto root = std::dynamic_pointer_cast<NSArray>(unarchiver.decodeObject());
  ASSERT_TRUE(root) << unarchiver.error();
  const NSArray expected({text("mutable text"), text("bytes"), std::make_shared<NSDate>(10.0),
                          std::make_shared<NSDictionary>(NSDictionary::Entries{{"k", text("mutable text")}}),
                          std::make_shared<NSData>(P::Bytes{0, 1}), std::make_shared<NSMutableData>(P::Bytes{0, 1}),
                          text("mutable text"), NSNumber::numberWithInt(4)});
  EXPECT_TRUE(root->isEqual(expected));
  EXPECT_EQ(root->objects()[0], root->objects()[6]);
  EXPECT_EQ(root->objects()[5]->className(), "NSMutableData");
}

TEST(KeyedArchive, AnUnknownClassIsReadAsItsKnownSuperclass) {
  std::string reason;
  const P archive = xmlArchive(entry("$0", uid(1)),
                               object(2, entry("$0", uid(3)) + entry("real", "<real>0.1</real>") +
                                             entry("integer", "<integer>-7</integer>") + entry("boolean", "<true/>")) +
                                   classOf({"FancyPair", "TestPair", "NSObject"}) + "<string>s</string>");
  const auto pair = std::dynamic_pointer_cast<Pair>(decode(archive, &reason));
  ASSERT_TRUE(pair) << reason;
  EXPECT_TRUE(pair->first->isEqual(*text("s")));
}

TEST(KeyedArchive, DamageIsRefusedAndNamed) {
  const std::string array = classOf({"NSArray", "NSObject"});
  const std::string dictionary = classOf({"NSDictionary", "NSObject"});
  const struct {
    const char* top;
    std::string objects;
    const char* expected;  // part of the reason
  } cases[] = {
      {"9", "", "object 9"},
      {"4294967295", "", "object 4294967295"},
      {"1", object(2, entry("NS.objects", "<array>" + uid(1) + "</array>")) + array, "contains itself"},
      {"1",
       object(2, entry("NS.objects", "<array>" + uid(3) + "</array>")) + array +
           object(2, entry("NS.objects", "<array>" + uid(1) + "</array>")),
       "contains itself"},
      {"1", uid(1), "reference to a reference"},
      {"1", "<array/>", "bare array"},
      {"1", "<dict/>", "without a class"},
      {"1", object(7, ""), "class without a name"},
      {"1", object(2, "") + "<string>NSArray</string>", "class without a name"},
      {"1", object(2, "") + classOf({"Unheard", "NSObject"}), "\"Unheard\""},
      {"1", object(2, "") + classOf({"TestAbstract", "NSObject"}), "\"TestAbstract\""},
      {"1", object(2, "") + classOf({"TestRefuser", "NSObject"}), "\"TestRefuser\""},
      {"1", object(2, "") + classOf({"TestThrower", "NSObject"}), "\"TestThrower\": index 6 beyond bounds"},
      {"1", object(2, "") + array, "NS.objects"},
      {"1", object(2, entry("NS.objects", "<string>x</string>")) + array, "NS.objects"},
      {"1", object(2, entry("NS.keys", "<array/>") + entry("NS.objects", "<array>" + uid(0) + "</array>")) + dictionary,
       "0 keys for 1 values"},
      {"1",
       object(2, entry("NS.keys", "<array><integer>1</integer></array>") +
                     entry("NS.objects", "<array>" + uid(0) + "</array>")) +
           dictionary,
       "no string"},
      {"1", object(2, "") + classOf({"NSMutableData"}), "data"},
      {"1", object(2, "") + classOf({"NSMutableString"}), "text"},
      {"1", object(2, entry("NS.bytes", "<data>/w==</data>")) + classOf({"NSString"}), "UTF-8"},
      {"1", object(2, entry("NS.time", "<string>now</string>")) + classOf({"NSDate"}), "NS.time"},
      {"1", object(2, "") + classOf({"NSDate"}), "NSDate"},
  };
  for (const auto& each : cases) {
    std::string reason;
    const std::string root = "<dict><key>CF$UID</key><integer>" + std::string(each.top) + "</integer></dict>";
    EXPECT_EQ(decode(xmlArchive(entry("root", root), each.objects), &reason), nullptr);
    EXPECT_NE(reason.find(each.expected), std::string::npos) << "expected \"" << each.expected << "\", got " << reason;
  }
}

TEST(KeyedArchive, ListsThatAreNoArchivesAreRefused) {
  P archive = xmlArchive(entry("root", uid(0)), "");
  for (const char* key : {"$archiver", "$objects", "$top"}) {
    P damaged = archive;
    damaged.set(key, P::integer(1));
    std::string reason;
    EXPECT_EQ(decode(damaged, &reason), nullptr);
    EXPECT_NE(reason.find(key), std::string::npos) << reason;
  }
  std::string reason;
  EXPECT_EQ(NSKeyedUnarchiver::unarchiveObject(
                *PropertyListToBytes(xmlArchive("", ""), PropertyListFormat::Xml, nullptr), &reason),
            nullptr);
  EXPECT_FALSE(reason.empty());
  for (const P& list : {P::array(), P(), P::string("x")}) {
    reason.clear();
    decode(list, &reason);
    EXPECT_FALSE(reason.empty());
  }
}

TEST(KeyedArchive, NestingAndSharingAreBounded) {
  std::string deep, wide;
  const int count = 3000;
  for (int i = 0; i < count; ++i) {
    deep += object(count + 2, entry("NS.objects", "<array>" + uid(i + 2) + "</array>"));
  }
  std::string reason;
  const std::string tail = "<string>end</string>" + classOf({"NSArray", "NSObject"});
  EXPECT_EQ(decode(xmlArchive(entry("root", uid(1)), deep + tail), &reason), nullptr);
  EXPECT_NE(reason.find("too deeply"), std::string::npos) << reason;

  for (int i = 0; i < 200; ++i) {  // 2^200 paths, 200 objects
    wide += object(202, entry("NS.objects", "<array>" + uid(i + 2) + uid(i + 2) + "</array>"));
  }
  const NSObjectRef root = decode(xmlArchive(entry("root", uid(1)), wide + tail), &reason);
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
  pair->second = text("in");
  NSArchiver archiver;
  archiver.encodeObject(pair);
  archiver.encodeObject(nullptr);
  archiver.encodeObject(pair->first);
  const auto bytes = archiver.finishEncoding();
  ASSERT_TRUE(bytes) << archiver.error();
  NSUnarchiver unarchiver;
  ASSERT_TRUE(unarchiver.initForReadingWithData(*bytes)) << unarchiver.error();
  const auto back = std::dynamic_pointer_cast<Pair>(unarchiver.decodeObject());
  ASSERT_TRUE(back) << unarchiver.error();
  EXPECT_TRUE(back->first->isEqual(*pair->first));
  EXPECT_TRUE(back->second->isEqual(*pair->second));
  EXPECT_EQ(unarchiver.decodeObject(), nullptr);
  EXPECT_EQ(unarchiver.decodeObject(), back->first);
  EXPECT_EQ(unarchiver.error(), "");
  EXPECT_EQ(unarchiver.decodeObject(), nullptr);
  EXPECT_NE(unarchiver.error(), "");
}

TEST(PlainArchive, DamageIsRefused) {
  const auto archive = [](P objects, P top) {
    P list;
    list.set("archiver", P::string("NSArchiver"));
    list.set("version", P::integer(1));
    list.set("objects", std::move(objects));
    list.set("top", std::move(top));
    return *PropertyListToBytes(list, PropertyListFormat::Binary, nullptr);
  };
  P ring, strange;
  ring.set("class", P::array({P::string("NSArray")}));
  ring.set("values", P::array({P::uid(1)}));
  strange.set("class", P::array({P::string("Unheard"), P::string("NSObject")}));
  strange.set("values", P::array());
  for (const P& object : {ring, strange, P(), P::uid(1), P::array()}) {
    NSUnarchiver unarchiver;
    ASSERT_TRUE(unarchiver.initForReadingWithData(archive(P::array({object}), P::array({P::uid(1)}))));
    EXPECT_EQ(unarchiver.decodeObject(), nullptr);
    EXPECT_NE(unarchiver.error(), "");
  }
  NSUnarchiver outside;
  ASSERT_TRUE(outside.initForReadingWithData(archive(P::array(), P::array({P::uid(1)}))));
  EXPECT_EQ(outside.decodeObject(), nullptr);
  EXPECT_NE(outside.error(), "");
  NSUnarchiver foreign;
  EXPECT_FALSE(
      foreign.initForReadingWithData(*NSKeyedArchiver::archivedData(text("x"), PropertyListFormat::Binary, nullptr)));
}

}  // namespace
