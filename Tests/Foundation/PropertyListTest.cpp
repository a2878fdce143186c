// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/PropertyList.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

namespace {

PropertyList::Bytes bytesOf(std::string_view text) {
  return PropertyList::Bytes(text.begin(), text.end());
}

std::optional<PropertyList> readXml(std::string_view body, std::string* reason = nullptr) {
  return PropertyListFromBytes(
      bytesOf("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + std::string(body) + "</plist>\n"),
      reason);
}

PropertyList nested(int depth) {
  PropertyList list = PropertyList::array();
  for (int i = 1; i < depth; ++i) {
    PropertyList outer = PropertyList::array();
    outer.append(std::move(list));
    list = std::move(outer);
  }
  return list;
}

PropertyList realFromBits(std::uint64_t bits) {
  return PropertyList::real(std::bit_cast<double>(bits));
}

struct Case {
  const char* name;
  PropertyList list;
};

std::vector<Case> survivors() {
  using P = PropertyList;
  P ordered;
  for (const char* key : {"zebra", "", "apple", "Zebra", "a&b<c>\"'", "ключ"}) {
    ordered.set(key, P::integer(static_cast<std::int64_t>(ordered.entries().size())));
  }
  P mixed = P::array({P::integer(1), P::real(1), P::boolean(true), P::string("1"), P::integer(0), P::real(0.0),
                      P::real(-0.0), P::boolean(false), P::string("")});
  P::Bytes everyByte(256);
  for (std::size_t i = 0; i < everyByte.size(); ++i) {
    everyByte[i] = static_cast<std::uint8_t>(i);
  }
  P large;
  for (int i = 0; i < 1500; ++i) {
    large.set("key " + std::to_string((i * 7919) % 1500), P::integer(i));
  }
  return {
      {"empty dictionary", P()},
      {"empty array", P::array()},
      {"booleans", P::array({P::boolean(true), P::boolean(false)})},
      {"integers at their limits",
       P::array({P::integer(0), P::integer(-1), P::integer(127), P::integer(255), P::integer(-128), P::integer(65536),
                 P::integer(std::numeric_limits<std::int32_t>::min()), P::integer(std::int64_t{1} << 32),
                 P::integer(std::numeric_limits<std::int64_t>::max()),
                 P::integer(std::numeric_limits<std::int64_t>::min())})},
      {"integers above the signed ones",
       P::array({P::unsignedInteger(std::uint64_t{1} << 63), P::unsignedInteger(~std::uint64_t{0}), P::integer(-1)})},
      {"reals", P::array({P::real(0.1), P::real(-0.0), P::real(1e300), P::real(5e-324), P::real(1.0 / 3),
                          P::real(std::numeric_limits<double>::max()), P::real(1), P::real(123456789.123456789),
                          P::real(std::numeric_limits<double>::infinity()),
                          P::real(-std::numeric_limits<double>::infinity()), P::real(0.5f)})},
      {"NaN", P::real(std::numeric_limits<double>::quiet_NaN())},
      {"equal numbers of different types", mixed},
      {"strings", P::array({P::string("a&b<c>]]>\"'"), P::string("  blanks\tand\nlines \n"), P::string("\r\n\r"),
                            P::string("größer 漢字 \U0001F600"), P::string("<real>1</real>"), P::string("&amp;"),
                            P::string("\u007F\u0085\u2028"), P::string(std::string(100000, 'x'))})},
      {"data", P::array({P::data({}), P::data({0}), P::data({1, 2}), P::data(everyByte)})},
      {"dates", P::array({P::date(0), P::date(599529600), P::date(-1), P::date(63113904000), P::date(-63113904000)})},
      {"order", ordered},
      {"many keys", large},
      {"uids", P::array({P::uid(0), P::uid(255), P::uid(70000), P::uid(0xFFFFFFFF)})},
      {"deepest nesting", nested(PropertyListMaximumDepth)},
  };
}

class PropertyListFormats : public testing::TestWithParam<PropertyListFormat> {};
INSTANTIATE_TEST_SUITE_P(Formats, PropertyListFormats,
                         testing::Values(PropertyListFormat::Xml, PropertyListFormat::Binary),
                         [](const auto& each) { return each.param == PropertyListFormat::Xml ? "Xml" : "Binary"; });

TEST_P(PropertyListFormats, ListsComeBackAsTheyWere) {
  for (const Case& each : survivors()) {
    SCOPED_TRACE(each.name);
    std::string reason;
    const auto bytes = PropertyListToBytes(each.list, GetParam(), &reason);
    ASSERT_TRUE(bytes) << reason;
    PropertyListFormat format{};
    const auto back = PropertyListFromBytes(*bytes, &reason, &format);
    ASSERT_TRUE(back) << reason;
    EXPECT_EQ(format, GetParam());
    EXPECT_TRUE(*back == each.list);
    ASSERT_EQ(back->entries().size(), each.list.entries().size());
    for (std::size_t i = 0; i < back->entries().size(); ++i) {
      EXPECT_EQ(back->entries().keyAt(i), each.list.entries().keyAt(i));
    }
  }
}

TEST_P(PropertyListFormats, WhatCannotBeKeptIsRefusedWithAReason) {
  using P = PropertyList;
  const bool xml = GetParam() == PropertyListFormat::Xml;
  P badKey;
  badKey.set(std::string_view("a\0b", 3), P::integer(1));
  const struct {
    const char* name;
    P list;
    bool refused;
  } cases[] = {
      {"a NUL", P::string(std::string("a\0b", 3)), true},
      {"a NUL in a key", badKey, true},
      {"half a character", P::string("a\xC3"), true},
      {"a surrogate", P::string("\xED\xA0\x80"), true},
      {"control characters",
       P::string("a\x01"
                 "b"),
       xml},
      {"a noncharacter", P::string("\uFFFF"), xml},
      {"a far date", P::date(1e18), xml},
      {"a date that is no number", P::date(std::numeric_limits<double>::quiet_NaN()), xml},
      {"nested too deeply", nested(PropertyListMaximumDepth + 1), true},
      {"nested far too deeply", nested(5000), true},
      {"a uid beyond 32 bits", P::uid(std::uint64_t{1} << 32), xml},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    std::string reason;
    const auto bytes = PropertyListToBytes(each.list, GetParam(), &reason);
    EXPECT_EQ(!bytes.has_value(), each.refused);
    EXPECT_EQ(!reason.empty(), each.refused);
    if (bytes) {
      const auto back = PropertyListFromBytes(*bytes, &reason);
      ASSERT_TRUE(back) << reason;
      EXPECT_TRUE(*back == each.list);
    }
  }
}

TEST(PropertyListBinary, KeepsWhatXmlCannot) {
  for (const PropertyList& list : {realFromBits(0xFFF8000000000123), realFromBits(0x7FF0000000000001),
                                   PropertyList::date(1.5), PropertyList::date(1e18)}) {
    const auto back = PropertyListFromBytes(*PropertyListToBytes(list, PropertyListFormat::Binary, nullptr), nullptr);
    ASSERT_TRUE(back);
    EXPECT_TRUE(*back == list);
  }
}

TEST(PropertyListXml, UnderstandsWhatOthersWrite) {
  using P = PropertyList;
  const struct {
    const char* body;
    P list;
  } cases[] = {
      {"<string>a&amp;&lt;&gt;&quot;&apos;&#65;&#x1F600;</string>", P::string("a&<>\"'A\U0001F600")},
      {"<string>x<![CDATA[<a>&amp;]]>y<!-- <b> -->z</string>", P::string("x<a>&amp;yz")},
      {"<string>a\r\nb\rc&#13;</string>", P::string("a\nb\nc\r")},
      {"<string/>", P::string("")},
      {"<!-- c --><array ><true /><false a=\"b\"/><?pi x?><true></true><integer unit='s'> +7 </integer></array >",
       P::array({P::boolean(true), P::boolean(false), P::boolean(true), P::integer(7)})},
      {"<array><integer>0x1F</integer><integer>010</integer><integer>-0</integer></array>",
       P::array({P::integer(31), P::integer(10), P::integer(0)})},
      {"<array><real>+infinity</real><real>-inf</real><real>5</real><real> 1e3\n</real></array>",
       P::array({P::real(INFINITY), P::real(-INFINITY), P::real(5), P::real(1000)})},
      {"<data>\n\tAA EC\n\t</data>", P::data({0, 1, 2})},
      {"<dict><key>CF$UID</key><integer>5</integer></dict>", P::uid(5)},
      {"<array/>", P::array()},
      {"<dict></dict>", P()},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.body);
    std::string reason;
    const auto list = readXml(each.body, &reason);
    ASSERT_TRUE(list) << reason;
    EXPECT_TRUE(*list == each.list);
  }
  for (const char* document :
       {"\xEF\xBB\xBF<?xml version='1.0'?><!DOCTYPE plist PUBLIC \"-//a//\" "
        "\"http://x/y>z.dtd\"><plist><true/></plist>",
        "<true/>", "<!-- a --><plist version='0.9'>\n<!-- b --><true/><!-- c -->\n</plist><!-- d -->\n"}) {
    std::string reason;
    const auto list = PropertyListFromBytes(bytesOf(document), &reason);
    ASSERT_TRUE(list) << document << ": " << reason;
    EXPECT_TRUE(*list == PropertyList::boolean(true));
  }
}

TEST(PropertyListXml, OfEqualKeysTheLastWinsInTheFirstPlace) {
  const auto list = readXml("<dict><key>b</key><true/><key>a</key><false/><key>b</key><integer>3</integer></dict>");
  ASSERT_TRUE(list);
  ASSERT_EQ(list->entries().size(), 2u);
  EXPECT_EQ(list->entries().keyAt(0), "b");
  EXPECT_TRUE(list->entries().valueAt(0) == PropertyList::integer(3));
}

TEST(PropertyListXml, RefusesWhatIsMalformed) {
  const char* const bodies[] = {
      "",
      "text",
      "<true/><false/>",
      "<array><true/>",
      "<array><true/></dict>",
      "</array>",
      "<dict><key>a</key></dict>",
      "<dict><true/></dict>",
      "<dict><key>a</key><key>b</key><true/></dict>",
      "<array><key>a</key></array>",
      "<array>text</array>",
      "<unknown/>",
      "<integer></integer>",
      "<integer>12x</integer>",
      "<integer>18446744073709551616</integer>",
      "<integer>-9223372036854775809</integer>",
      "<integer>1<!-- -->2</integer><integer/>",
      "<real>1,5</real>",
      "<real>junk</real>",
      "<real>+-1</real>",
      "<real/>",
      "<date>junk</date>",
      "<date>2021-02-29T00:00:00Z</date>",
      "<data>A*==</data>",
      "<data>AAE</data>",
      "<data>A===</data>",
      "<string>&unknown;</string>",
      "<string>&#0;</string>",
      "<string>&#xD800;</string>",
      "<string>&#x110000;</string>",
      "<string>& b</string>",
      "<string><b>x</b></string>",
      "<string>\x01</string>",
      "<string>\xC3</string>",
      "<true>yes</true>",
      "<string>",
      "<string><![CDATA[",
      "<!-- ",
      "<string",
      "< />",
  };
  for (const char* body : bodies) {
    std::string reason;
    EXPECT_FALSE(readXml(body, &reason)) << body;
    EXPECT_FALSE(reason.empty()) << body;
  }
}

TEST(PropertyListXml, RefusesDocumentsThatCouldGrowOrMislead) {
  const std::string laughs =
      "<!DOCTYPE plist [<!ENTITY a \"ha\"><!ENTITY b \"&a;&a;\">]><plist><string>&b;</string></plist>";
  for (const std::string& document :
       {laughs, std::string("<?xml version='1.0' encoding='ISO-8859-1'?><plist><string>\xC3\xA9</string></plist>"),
        std::string("<plist><true/>"), std::string("<plist><true/></plist>more"), std::string("<plist/>"),
        std::string("junk"), std::string("\xFF\xFE<\0p\0", 6), std::string("<plist><array>") + "<!-->" + "</array>"}) {
    std::string reason;
    EXPECT_FALSE(PropertyListFromBytes(bytesOf(document), &reason)) << document;
    EXPECT_FALSE(reason.empty());
  }
}

TEST(PropertyListXml, NestingIsBoundedWhateverHidesIt) {
  std::string deep;
  for (int i = 0; i < 200000; ++i) {
    deep += i % 2 == 0 ? "<array>" : "<dict><key>k</key>";
  }
  std::string reason;
  EXPECT_FALSE(readXml(deep, &reason));
  EXPECT_NE(reason.find("deep"), std::string::npos) << reason;
}

TEST(PropertyListValue, ConvertsAsNumbersDo) {
  using P = PropertyList;
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
      {P::string("7"), 0, 0, 0, false},
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
  using P = PropertyList;
  EXPECT_FALSE(P::integer(1) == P::real(1));
  EXPECT_FALSE(P::integer(1) == P::boolean(true));
  EXPECT_FALSE(P::real(0.0) == P::real(-0.0));
  EXPECT_TRUE(P::real(std::numeric_limits<double>::quiet_NaN()) == P::real(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_FALSE(P::unsignedInteger(~std::uint64_t{0}) == P::integer(-1));
  EXPECT_TRUE(P::data({1}) == P::mutableData({1}));
  P a, b;
  a.set("x", P::integer(1));
  a.set("y", P::integer(2));
  b.set("y", P::integer(2));
  b.set("x", P::integer(1));
  EXPECT_TRUE(a == b);
  b.set("x", P::integer(9));
  EXPECT_FALSE(a == b);
  P copy = a;
  copy.set("x", P::string("changed"));
  EXPECT_EQ(a.find("x")->integerValue(), 1);
}

}  // namespace
