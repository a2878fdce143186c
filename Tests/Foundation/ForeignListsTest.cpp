// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "Platform/Foundation/NSValues.h"
#include "Tests/Foundation/Cases.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using P = PropertyList;

class Refuser : public NSObject {
 public:
  bool initWithCoder(NSCoder&) override { return false; }
};
class Thrower : public NSObject {
 public:
  bool initWithCoder(NSCoder&) override { throw std::out_of_range("index 6 beyond bounds"); }
};
const NSClassRegistration refuserClass("TestRefuser", "NSObject", [] { return std::make_shared<Refuser>(); });
const NSClassRegistration throwerClass("TestThrower", "NSObject", [] { return std::make_shared<Thrower>(); });
const NSClassRegistration abstractClass("TestAbstract", "NSObject", nullptr);

std::optional<P> readCase(const Case& each, std::string* reason) {
  if (each.table.ends_with("archives.txt")) {
    const NSObjectRef root = NSKeyedUnarchiver::unarchiveObject(keyedArchive(each.input), reason);
    return root ? NSPropertyListFromObject(root.get()) : std::nullopt;
  }
  return PropertyListFromBytes(each.table.ends_with("xml.txt") ? xmlList(each.input) : binaryList(each.input), reason);
}

std::vector<Case> casesOfAll(const std::string& folder) {
  std::vector<Case> all;
  for (const char* form : {"/xml.txt", "/binary.txt", "/archives.txt"}) {
    const std::vector<Case> cases = casesOf(folder + form);
    all.insert(all.end(), cases.begin(), cases.end());
  }
  return all;
}

class Damaged : public testing::TestWithParam<Case> {};
INSTANTIATE_TEST_SUITE_P(Lists, Damaged, testing::ValuesIn(casesOfAll("Damaged")));

TEST_P(Damaged, IsRefusedWithItsReason) {
  std::string reason;
  EXPECT_FALSE(readCase(GetParam(), &reason));
  EXPECT_NE(reason.find(GetParam().expected), std::string::npos) << reason;
}

class Foreign : public testing::TestWithParam<Case> {};
INSTANTIATE_TEST_SUITE_P(Lists, Foreign, testing::ValuesIn(casesOfAll("Foreign")));

TEST_P(Foreign, IsUnderstood) {
  std::string reason;
  const auto list = readCase(GetParam(), &reason);
  ASSERT_TRUE(list) << reason;
  EXPECT_EQ(compactXml(*list), GetParam().expected);
}

P::Bytes container(std::uint8_t kind, const std::vector<std::uint64_t>& references, unsigned referenceSize) {
  P::Bytes out{static_cast<std::uint8_t>(kind | 0xF), 0x12};
  appendNumber(out, references.size() / (kind == 0xD0 ? 2 : 1), 4);
  for (const std::uint64_t each : references) {
    appendNumber(out, each, referenceSize);
  }
  return out;
}

TEST(BinaryLists, ReferencesAndOffsetsOfEveryWidthAreRead) {
  for (unsigned width = 1; width <= 8; ++width) {
    const auto list = PropertyListFromBytes(
        binaryList({container(0xA0, {1, 2, 1}, width), {0x51, 's'}, container(0xD0, {1, 3}, width), {0x09}}, width,
                   width),
        nullptr);
    ASSERT_TRUE(list) << width;
    EXPECT_EQ(compactXml(*list), "<array><string>s</string><dict><key>s</key><true/></dict><string>s</string></array>");
  }
}

// A chain of arrays, the middle of which the root also refers to itself, before or behind it. Each ends in a short way
// down, which must not hide the long one.
TEST(BinaryLists, NestingIsBoundedAlsoWhereItIsReachedBySharing) {
  constexpr std::size_t most = PropertyListMaximumDepth;
  for (const std::size_t depth : {most, most + 1, std::size_t{60000}}) {
    for (const bool middleFirst : {false, true}) {
      std::vector<P::Bytes> objects;
      for (std::size_t i = 0; i + 1 < depth; ++i) {
        const std::uint64_t other = i == 0 ? depth / 2 : depth - 1;
        objects.push_back(i == 0 && middleFirst ? container(0xA0, {other, 1}, 2) : container(0xA0, {i + 1, other}, 2));
      }
      objects.push_back({0xA0});
      std::string reason;
      EXPECT_EQ(PropertyListFromBytes(binaryList(objects, 2, 4), &reason).has_value(), depth <= most);
      EXPECT_EQ(reason, depth <= most ? "" : "nested too deeply");
    }
  }
}

TEST(BinaryLists, WhatUnfoldsWithoutEndIsRefused) {
  std::vector<P::Bytes> bomb;  // every level refers twice to the next
  for (std::uint64_t i = 0; i < 50; ++i) {
    bomb.push_back(container(0xA0, {i + 1, i + 1}, 1));
  }
  bomb.push_back({0x09});
  P::Bytes megabyte{0x4F, 0x12, 0x00, 0x10, 0x00, 0x00};
  megabyte.resize(megabyte.size() + (1 << 20));
  std::string reason;
  EXPECT_FALSE(PropertyListFromBytes(binaryList(bomb), &reason));
  EXPECT_EQ(reason, "too many values");
  EXPECT_FALSE(PropertyListFromBytes(
      binaryList({container(0xA0, std::vector<std::uint64_t>(1000, 1), 2), megabyte}, 2, 4), &reason));
  EXPECT_EQ(reason, "too large");
}

TEST(BinaryLists, EveryTruncationAndEveryChangedByteIsHarmless) {
  const P::Bytes whole = fileOf("/../Fuzz/corpus/property-list/mixed.bin");
  ASSERT_TRUE(PropertyListFromBytes(whole, nullptr));
  for (std::size_t at = 0; at < whole.size(); ++at) {
    std::string reason;
    EXPECT_FALSE(PropertyListFromBytes(std::span(whole).first(at), &reason)) << at;
    EXPECT_FALSE(reason.empty());
    for (int value = 0; value < 256; ++value) {
      P::Bytes changed = whole;
      changed[at] = static_cast<std::uint8_t>(value);
      reason.clear();
      EXPECT_TRUE(PropertyListFromBytes(changed, &reason) || !reason.empty());
    }
  }
}

TEST(XmlLists, NestingAndNumberAreBounded) {
  std::string deep;
  for (int i = 0; i < 200000; ++i) {
    deep += i % 2 == 0 ? "<array>" : "<dict><key>k</key>";
  }
  std::string many = "<array>";
  for (std::uint64_t i = 0; i < PropertyListMaximumValues; ++i) {
    many += "<true/>";
  }
  std::string reason;
  EXPECT_FALSE(PropertyListFromBytes(xmlList(deep), &reason));
  EXPECT_NE(reason.find("nested too deeply"), std::string::npos) << reason;
  EXPECT_FALSE(PropertyListFromBytes(xmlList(many + "</array>"), &reason));
  EXPECT_NE(reason.find("too many values"), std::string::npos) << reason;
}

// Comments, tags and text that end in another piece of the document than the one in which they begin.
TEST(XmlLists, ElementsMayBeOfAnySize) {
  const std::string big(1 << 20, 'x');
  const auto list = PropertyListFromBytes(
      xmlList("<!--" + big + "--><string a='" + big + "'>" + big + "&amp;" + big + "</string>"), nullptr);
  ASSERT_TRUE(list);
  EXPECT_EQ(list->stringValue(), big + "&" + big);
}

}  // namespace
