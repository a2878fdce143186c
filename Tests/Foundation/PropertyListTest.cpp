// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSUnicode.h"
#include "Tests/Foundation/Cases.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <map>
#include <random>

namespace {

using P = PropertyList;

P nested(int depth) {
  P list = P::array();
  for (int i = 1; i < depth; ++i) {
    P outer = P::array();
    outer.append(std::move(list));
    list = std::move(outer);
  }
  return list;
}

class PropertyListFormats : public testing::TestWithParam<PropertyListFormat> {};
INSTANTIATE_TEST_SUITE_P(Formats, PropertyListFormats,
                         testing::Values(PropertyListFormat::Xml, PropertyListFormat::Binary));

// Values of every kind at their limits, in the bytes that both formats have always had.
TEST(PropertyListGolden, TheSameListHasTheSameBytes) {
  const P::Bytes xml = fileOf("/Golden/everything.plist");
  const P::Bytes binary = fileOf("/Golden/everything.bin");
  PropertyListFormat first{}, second{};
  const auto list = PropertyListFromBytes(xml, nullptr, &first);
  ASSERT_TRUE(list);
  EXPECT_TRUE(PropertyListFromBytes(binary, nullptr, &second) == list);
  EXPECT_TRUE(first == PropertyListFormat::Xml && second == PropertyListFormat::Binary);
  EXPECT_TRUE(PropertyListToBytes(*list, first, nullptr) == xml);
  EXPECT_TRUE(PropertyListToBytes(*list, second, nullptr) == binary);
}

// So many that some of their hashes are equal.
TEST_P(PropertyListFormats, EveryOneOfManyValuesIsKept) {
  P list;
  for (int i = 0; i < 300000; ++i) {
    list.set("key " + std::to_string(i), P::real(i + 0.1));
  }
  EXPECT_EQ(list.entries().size(), 300000u);
  const auto bytes = PropertyListToBytes(list, GetParam(), nullptr);
  ASSERT_TRUE(bytes);
  EXPECT_TRUE(PropertyListFromBytes(*bytes, nullptr) == list);
}

TEST_P(PropertyListFormats, WhatCannotBeKeptIsRefusedWithAReason) {
  const bool xml = GetParam() == PropertyListFormat::Xml;
  P badKey;
  badKey.set(std::string_view("a\0b", 3), P::integer(1));
  P entry, many = P::array(P::Array(PropertyListMaximumValues - 3, P::boolean(true)));
  entry.set("a key is a value, too", P::boolean(true));
  many.append(entry);
  const P large = P::data(P::Bytes(PropertyListMaximumBytes / 4 + 1));
  const struct {
    const char* reason;
    P list;
    bool refused;
  } cases[] = {
      {"deepest", nested(PropertyListMaximumDepth), false},
      {"a NUL", P::string(std::string("a\0b", 3)), true},
      {"a NUL", badKey, true},
      {"not UTF-8", P::string("a\xC3"), true},
      {"not UTF-8", P::string("\xED\xA0\x80"), true},
      {"control characters", P::string("a\x01-b"), xml},
      {"control characters", P::string("\uFFFF"), xml},
      {"years 1 to 9999", P::date(1e18), xml},
      {"years 1 to 9999", P::date(252423993600), xml},
      {"years 1 to 9999", P::date(std::numeric_limits<double>::quiet_NaN()), xml},
      {"32 bits", P::uid(std::uint64_t{1} << 32), xml},
      {"too deeply", nested(PropertyListMaximumDepth + 1), true},
      {"too deeply", nested(5000), true},
      {"too many values", many, true},
      {"too large", P::array({large, large}), true},
  };
  for (const auto& each : cases) {
    std::string reason;
    const auto bytes = PropertyListToBytes(each.list, GetParam(), &reason);
    EXPECT_EQ(!bytes.has_value(), each.refused) << each.reason;
    EXPECT_EQ(reason.find(each.reason) != std::string::npos, each.refused) << reason;
    if (bytes) {
      EXPECT_TRUE(PropertyListFromBytes(*bytes, nullptr) == each.list) << each.reason;
    }
  }
}

TEST(PropertyListBinary, KeepsWhatXmlCannot) {
  for (const P& list : {P::real(std::bit_cast<double>(0xFFF8000000000123)),
                        P::real(std::bit_cast<double>(0x7FF0000000000001)), P::date(1.5), P::uid(~std::uint64_t{0})}) {
    const auto back = PropertyListFromBytes(*PropertyListToBytes(list, PropertyListFormat::Binary, nullptr), nullptr);
    EXPECT_TRUE(back == list);
  }
}

// Beside a map and a list of keys, across the sizes at which a dictionary changes the way it finds them.
TEST(PropertyListValue, ADictionaryFindsWhatWasSetLast) {
  std::mt19937 random(7);
  P::Dictionary dictionary;
  std::map<std::string, std::int64_t> values;
  std::vector<std::string> order;
  for (std::int64_t step = 0; step < 4000; ++step) {
    const std::string key = "key" + std::to_string(random() % (2 + static_cast<unsigned>(step) / 4));
    if (values.insert_or_assign(key, step).second) {
      order.push_back(key);
    }
    dictionary.set(key, P::integer(step));
    const P::Dictionary copy = dictionary;
    ASSERT_TRUE(step % 97 != 0 || copy == dictionary);
    ASSERT_EQ(copy.find(key)->integerValue(), step);
    ASSERT_EQ(copy.find("no" + key), nullptr);
  }
  ASSERT_EQ(dictionary.size(), order.size());
  for (std::size_t i = 0; i < order.size(); ++i) {
    EXPECT_EQ(dictionary.keyAt(i), order[i]);
    EXPECT_EQ(dictionary.valueAt(i).integerValue(), values[order[i]]);
  }
}

TEST(PropertyListValue, ConvertsAsNumbersDo) {
  const struct {
    P value;
    std::int32_t asInt;
    std::int64_t asInteger;
    double asDouble;
    bool asBool;
  } cases[] = {
      {P::boolean(true), 1, 1, 1, true},
      {P::integer(-5), -5, -5, -5, true},
      {P::integer(std::int64_t{1} << 40), INT32_MAX, std::int64_t{1} << 40, 1099511627776.0, true},
      {P::unsignedInteger(~std::uint64_t{0}), INT32_MAX, INT64_MAX, 18446744073709551615.0, true},
      {P::real(-2.9), -2, -2, -2.9, true},
      {P::real(1e30), INT32_MAX, INT64_MAX, 1e30, true},
      {P::real(-1e30), INT32_MIN, INT64_MIN, -1e30, true},
      {P::real(9223372036854775808.0), INT32_MAX, INT64_MAX, 9223372036854775808.0, true},
      {P::real(-0.0), 0, 0, -0.0, false},
      {P::string("7"), 7, 7, 7, false},
      {P::string(" \t\n-2.75e1 dB"), -2, -2, -27.5, false},
      {P::string("+.5e"), 0, 0, 0.5, false},
      {P::string("1,5"), 1, 1, 1, false},
      {P::string("0x1F"), 0, 0, 0, false},
      {P::string("99999999999999999999"), INT32_MAX, INT64_MAX, 1e20, false},
      {P::string("-99999999999999999999"), INT32_MIN, INT64_MIN, -1e20, false},
      {P::string("10e400"), 10, 10, HUGE_VAL, false},
      {P::string("-0.1e400"), 0, 0, -HUGE_VAL, false},
      {P::string("1000e-400"), 1000, 1000, 0, false},
      {P::string("nan"), 0, 0, 0, false},
      {P::string("-inf"), 0, 0, 0, false},
      {P::string("+-1"), 0, 0, 0, false},
      {P::string("- 1"), 0, 0, 0, false},
      {P::string("."), 0, 0, 0, false},
      {P::string(""), 0, 0, 0, false},
      {P::array(), 0, 0, 0, false},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(each.value.intValue(), each.asInt);
    EXPECT_EQ(each.value.integerValue(), each.asInteger);
    EXPECT_EQ(each.value.doubleValue(), each.asDouble);
    EXPECT_EQ(each.value.boolValue(), each.asBool);
  }
  EXPECT_EQ(P::real(std::numeric_limits<double>::quiet_NaN()).intValue(), 0);
}

TEST(PropertyListValue, EqualityKeepsTypesAndBitsApart) {
  P forwards, backwards;
  forwards.set("x", P::integer(1));
  forwards.set("y", P::integer(2));
  backwards.set("y", P::integer(2));
  backwards.set("x", P::integer(1));
  EXPECT_TRUE(forwards == backwards);
  EXPECT_TRUE(P::real(NAN) == P::real(NAN));
  EXPECT_TRUE(P::data({1}) == P::mutableData({1}));
  const P copy = backwards;
  backwards.set("x", P::integer(9));
  EXPECT_EQ(copy.find("x")->integerValue(), 1);
  const P different[] = {P::integer(1),
                         P::real(1),
                         P::boolean(true),
                         P::string("1"),
                         P::data({1}),
                         P::date(1),
                         P::uid(1),
                         P::real(0.0),
                         P::real(-0.0),
                         P::integer(-1),
                         forwards,
                         backwards,
                         P::array({P::integer(1)}),
                         P(),
                         P::array(),
                         P::unsignedInteger(~std::uint64_t{0})};
  for (const P& one : different) {
    for (const P& other : different) {
      EXPECT_EQ(one == other, &one == &other) << one.typeName() << " " << other.typeName();
    }
  }
}

TEST(Unicode, NoControlReachesATerminal) {
  EXPECT_EQ(NSPrintableText("plain é漢\U0001F600 \\n"), "plain é漢\U0001F600 \\n");
  EXPECT_EQ(NSPrintableText("a\n\t\r\x1B[2J\x7F\u009B\u2028\u202E\xFF\xC2."),
            "a\\n\\t\\r\\u{1b}[2J\\u{7f}\\u{9b}\\u{2028}\\u{202e}\uFFFD\uFFFD.");
  EXPECT_EQ(NSPrintableText(std::string_view("\0", 1)), "\\u{0}");
}

TEST(Unicode, TheValidPrefixEndsWhereUtf8Does) {
  const std::string before = "eight by te é漢\U0001F600";
  EXPECT_EQ(NSValidUTF8Length(before), before.size());
  for (const char* bad : {"\x80", "\xC3", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
                          "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xE6\xBC", "\xE6\xBCz", "\xF0\x9F\x98", "\xFF"}) {
    EXPECT_EQ(NSValidUTF8Length(before + bad), before.size());
    EXPECT_EQ(NSValidUTF8Length(before + bad + "more text"), before.size());
  }
}

}  // namespace
