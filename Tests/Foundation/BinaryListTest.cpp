// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/PropertyList.h"
#include "Tests/Foundation/BinaryList.h"

#include <gtest/gtest.h>

namespace {

using P = PropertyList;

std::optional<P> read(const BinaryList& list, std::string* reason) {
  return PropertyListFromBytes(list.bytes(), reason);
}

P::Bytes sized(std::uint8_t kind, std::uint64_t value, unsigned width) {
  P::Bytes out{kind};
  BinaryList::number(out, value, width);
  return out;
}

P::Bytes sixteen(std::uint64_t high, std::uint64_t low) {
  P::Bytes out{0x14};
  BinaryList::number(out, high, 8);
  BinaryList::number(out, low, 8);
  return out;
}

TEST(BinaryLists, EveryWidthOfANumberIsRead) {
  const struct {
    P::Bytes object;
    P list;
  } cases[] = {
      {sized(0x10, 200, 1), P::integer(200)},
      {sized(0x11, 0xFFFF, 2), P::integer(65535)},
      {sized(0x12, 0xFFFFFFFF, 4), P::integer(4294967295)},
      {sized(0x13, ~std::uint64_t{0}, 8), P::integer(-1)},
      {sixteen(0, 5), P::integer(5)},
      {sixteen(0, ~std::uint64_t{0}), P::unsignedInteger(~std::uint64_t{0})},
      {sixteen(~std::uint64_t{0}, static_cast<std::uint64_t>(-5)), P::integer(-5)},
      {sized(0x22, 0x3F000000, 4), P::real(0.5)},
      {sized(0x23, 0x8000000000000000, 8), P::real(-0.0)},
      {sized(0x80, 7, 1), P::uid(7)},
      {sized(0x81, 700, 2), P::uid(700)},
      {sized(0x82, 70000, 3), P::uid(70000)},
      {sized(0x83, 70000, 4), P::uid(70000)},
      {sized(0x87, 7, 8), P::uid(7)},
      {{0x63, 0x00, 'a', 0xD8, 0x3D, 0xDE, 0x00}, P::string("a\U0001F600")},
      {{0x52, 0xC3, 0xA9}, P::string("é")},
      {{0x5F, 0x10, 0x02, 'o', 'k'}, P::string("ok")},
  };
  for (const unsigned offsetSize : {1u, 3u, 8u}) {
    for (const auto& each : cases) {
      BinaryList list;
      list.offsetSize = offsetSize;
      list.objects = {each.object};
      std::string reason;
      const auto result = read(list, &reason);
      ASSERT_TRUE(result) << reason << " (kind " << int{each.object[0]} << ")";
      EXPECT_TRUE(*result == each.list) << "kind " << int{each.object[0]};
    }
  }
}

TEST(BinaryLists, ReferencesAndCountsOfEveryWidthAreRead) {
  for (const unsigned referenceSize : {1u, 2u, 3u, 4u, 8u}) {
    for (const unsigned countWidth : {0u, 1u, 2u, 4u, 8u}) {
      BinaryList list;
      list.referenceSize = referenceSize;
      list.objects = {list.array({1, 2, 1}, countWidth),
                      BinaryList::text("shared"),
                      list.container(0xD0, 1, {1, 3}, countWidth),
                      {0x09}};
      std::string reason;
      const auto result = read(list, &reason);
      ASSERT_TRUE(result) << reason;
      P inner;
      inner.set("shared", P::boolean(true));
      EXPECT_TRUE(*result == P::array({P::string("shared"), inner, P::string("shared")}));
    }
  }
}

TEST(BinaryLists, OfEqualKeysTheLastWins) {
  BinaryList list;
  list.objects = {list.container(0xD0, 2, {1, 1, 2, 3}), BinaryList::text("k"), {0x08}, {0x09}};
  const auto result = read(list, nullptr);
  ASSERT_TRUE(result);
  P expected;
  expected.set("k", P::boolean(true));
  EXPECT_TRUE(*result == expected);
}

TEST(BinaryLists, DamageIsRefusedWithAReason) {
  const struct {
    const char* name;
    std::vector<P::Bytes> objects;
  } cases[] = {
      {"an array that contains itself", {{0xA1, 0}}},
      {"a circle of two", {{0xA1, 1}, {0xA1, 0}}},
      {"a circle through a dictionary", {{0xD1, 1, 0}, {0x51, 'k'}}},
      {"a reference out of range", {{0xA1, 9}}},
      {"a key that is no text", {{0xD1, 1, 1}, {0x09}}},
      {"a count beyond the file", {{0xAF, 0x10, 200, 0}}},
      {"a count that overflows", {{0xAF, 0x13, 0x80, 0, 0, 0, 0, 0, 0, 1, 0}}},
      {"a dictionary's count that overflows twice", {{0xDF, 0x13, 0x40, 0, 0, 0, 0, 0, 0, 0, 0}}},
      {"the largest count of data", {{0x4F, 0x13, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}}},
      {"a count of UTF-16 that overflows", {{0x6F, 0x13, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 'a'}}},
      {"a count that is text", {{0xAF, 0x51, 'a'}}},
      {"half a surrogate", {{0x61, 0xD8, 0x00}}},
      {"surrogates in the wrong order", {{0x62, 0xDC, 0x00, 0xD8, 0x00}}},
      {"a NUL", {{0x52, 'a', 0}}},
      {"bytes that are no text", {{0x51, 0xFF}}},
      {"null", {{0x00}}},
      {"a set", {{0xC0}}},
      {"an unknown kind", {{0xF0}}},
      {"an integer of 32 bytes", {P::Bytes(33, 0x15)}},
      {"an integer beyond 64 bits", {sixteen(1, 0)}},
      {"a real of 2 bytes", {{0x21, 0, 0}}},
      {"a number cut off", {{0x13, 0, 0}}},
  };
  for (const auto& each : cases) {
    BinaryList list;
    list.objects = each.objects;
    std::string reason;
    EXPECT_FALSE(read(list, &reason)) << each.name;
    EXPECT_FALSE(reason.empty()) << each.name;
  }
}

TEST(BinaryLists, EveryTruncationAndEveryChangedByteIsHarmless) {
  BinaryList list;
  list.objects = {list.container(0xD0, 2, {1, 2, 3, 4}),
                  BinaryList::text("key"),
                  {0x62, 0x00, 'a', 0x26, 0x3A},
                  list.array({5, 5, 6, 7}),
                  sixteen(0, ~std::uint64_t{0}),
                  sized(0x23, 0x3FF0000000000000, 8),
                  {0x43, 1, 2, 3},
                  sixteen(0, 5)};
  const P::Bytes whole = list.bytes();
  ASSERT_TRUE(PropertyListFromBytes(whole, nullptr));
  for (std::size_t size = 0; size < whole.size(); ++size) {
    std::string reason;
    EXPECT_FALSE(PropertyListFromBytes(std::span(whole).first(size), &reason)) << size;
    EXPECT_FALSE(reason.empty());
  }
  for (std::size_t at = 8; at < whole.size(); ++at) {
    for (int value = 0; value < 256; ++value) {
      P::Bytes changed = whole;
      changed[at] = static_cast<std::uint8_t>(value);
      std::string reason;
      EXPECT_TRUE(PropertyListFromBytes(changed, &reason) || !reason.empty());
    }
  }
}

TEST(BinaryLists, TheTrailerIsNotTrusted) {
  BinaryList list;
  list.objects = {{0x09}};
  const P::Bytes whole = list.bytes();
  const std::size_t trailer = whole.size() - 32;
  const struct {
    std::size_t at;
    std::uint64_t value;
  } cases[] = {
      {8, 0},
      {8, 2},
      {8, ~std::uint64_t{0}},
      {8, std::uint64_t{1} << 63},  // number of objects
      {16, 1},
      {16, ~std::uint64_t{0}},  // root
      {24, 0},
      {24, 8},
      {24, whole.size()},
      {24, ~std::uint64_t{0}},  // place of the table
  };
  for (const auto& each : cases) {
    P::Bytes changed = whole;
    P::Bytes value;
    BinaryList::number(value, each.value, 8);
    std::copy(value.begin(), value.end(), changed.begin() + static_cast<std::ptrdiff_t>(trailer + each.at));
    EXPECT_FALSE(PropertyListFromBytes(changed, nullptr)) << each.at << ": " << each.value;
  }
}

TEST(BinaryLists, NestingIsBounded) {
  for (const std::size_t depth :
       {std::size_t{PropertyListMaximumDepth}, std::size_t{PropertyListMaximumDepth} + 1, std::size_t{60000}}) {
    BinaryList list;
    list.referenceSize = 2;
    list.offsetSize = 4;
    for (std::size_t i = 0; i + 1 < depth; ++i) {
      list.objects.push_back(list.array({i + 1}));
    }
    list.objects.push_back({0xA0});
    std::string reason;
    EXPECT_EQ(read(list, &reason).has_value(), depth <= PropertyListMaximumDepth) << depth << ": " << reason;
  }
}

TEST(BinaryLists, WhatUnfoldsWithoutEndIsRefused) {
  BinaryList bomb;  // every level refers twice to the next: 2^50 values
  for (std::uint64_t i = 0; i < 50; ++i) {
    bomb.objects.push_back(bomb.array({i + 1, i + 1}));
  }
  bomb.objects.push_back({0x09});
  std::string reason;
  EXPECT_FALSE(read(bomb, &reason));
  EXPECT_NE(reason.find("too many"), std::string::npos) << reason;

  BinaryList large;  // one megabyte, a thousand times
  large.referenceSize = 2;
  large.offsetSize = 4;
  P::Bytes data{0x4F, 0x12, 0x00, 0x10, 0x00, 0x00};
  data.resize(data.size() + (1 << 20));
  large.objects = {large.array(std::vector<std::uint64_t>(1000, 1), 2), data};
  EXPECT_FALSE(read(large, &reason));
  EXPECT_NE(reason.find("too large"), std::string::npos) << reason;
}

TEST(BinaryLists, ObjectsThatOverlapDoNotEscapeTheWalk) {
  // The second object is an integer whose bytes the array lies within: rewriting it would change the array.
  BinaryList list;
  P::Bytes integer = sixteen(0, 0);
  integer[1 + 3] = 0xA1;
  list.objects = {{0xA2, 1, 2}, {0x09}, integer};
  P::Bytes bytes = list.bytes();
  const std::size_t table = bytes.size() - 32 - 6;
  bytes[table + 3] = static_cast<std::uint8_t>(8 + 3 + 1 + 4);  // object 1 begins inside object 2
  std::string reason;
  const auto result = PropertyListFromBytes(bytes, &reason);
  EXPECT_TRUE(result || !reason.empty());
}

}  // namespace
