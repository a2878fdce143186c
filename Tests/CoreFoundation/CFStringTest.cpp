// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFString.h"

#include "Tests/CoreFoundation/CFTestText.h"
#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <random>

namespace {

constexpr CFIndex kFar = std::numeric_limits<CFIndex>::max();

TEST(CFStringTest, CountsReferences) {
  CFStringRef string = CFStringCreateWithCString(nullptr, "text", kCFStringEncodingUTF8);
  EXPECT_EQ(CFGetRetainCount(string), 1);
  CFStringRef copy = CFStringCreateCopy(nullptr, string);
  EXPECT_EQ(copy, string) << "an immutable string is its own copy";
  EXPECT_EQ(CFGetRetainCount(string), 2);
  CFRelease(string);
  EXPECT_EQ(TextOf(copy), u"text");
  CFRelease(copy);

  CFStringRef constant = CFSTR("constant");
  EXPECT_EQ(constant, CFSTR("constant"));
  for (int i = 0; i < 3; ++i) CFRelease(constant);
  EXPECT_EQ(TextOf(constant), u"constant");
}

TEST(CFStringTest, CopiesOfMutableStringsAreIndependent) {
  const auto original = MakeMutable(u"one");
  const CFOwned<CFStringRef> copy(CFStringCreateCopy(nullptr, original.get()));
  const CFOwned<CFMutableStringRef> second(CFStringCreateMutableCopy(nullptr, 0, original.get()));
  CFStringAppend(original.get(), CFSTR(" two"));
  CFStringDelete(second.get(), {0, 2});
  EXPECT_EQ(TextOf(original.get()), u"one two");
  EXPECT_EQ(TextOf(copy.get()), u"one");
  EXPECT_EQ(TextOf(second.get()), u"e");
}

TEST(CFStringTest, EditsInsideTheText) {
  const auto string = MakeMutable(u"abcdef");
  CFStringInsert(string.get(), 6, CFSTR("!"));
  CFStringInsert(string.get(), 0, CFSTR("<"));
  EXPECT_EQ(TextOf(string.get()), u"<abcdef!");
  CFStringReplace(string.get(), {1, 3}, CFSTR("x"));
  EXPECT_EQ(TextOf(string.get()), u"<xdef!");
  CFStringReplace(string.get(), {1, 1}, CFSTR("1234"));
  EXPECT_EQ(TextOf(string.get()), u"<1234def!");
  CFStringReplace(string.get(), {0, 2}, string.get());
  EXPECT_EQ(TextOf(string.get()), u"<1234def!234def!");
  CFStringDelete(string.get(), {9, 7});
  CFStringAppendCString(string.get(), "\x8a", kCFStringEncodingMacRoman);
  CFStringAppendCString(string.get(), "\x8a", kCFStringEncodingUTF8);  // invalid: nothing happens
  EXPECT_EQ(TextOf(string.get()), u"<1234def!\u00e4");
}

// A naive edit of a std::u16string is the oracle.
TEST(CFStringTest, RandomEditsAgreeWithTheDefinition) {
  std::mt19937 random(7);
  std::u16string expected = u"start";
  const auto string = MakeMutable(expected);
  for (int step = 0; step < 5000; ++step) {
    const std::size_t from = random() % (expected.size() + 1);
    const std::size_t count = random() % (expected.size() - from + 1);
    const std::u16string piece(random() % 9, static_cast<char16_t>('a' + random() % 26));
    const CFRange range = CFRangeMake(static_cast<CFIndex>(from), static_cast<CFIndex>(count));
    CFStringReplace(string.get(), range, MakeString(piece).get());
    expected.replace(from, count, piece);
    ASSERT_EQ(TextOf(string.get()), expected) << "step " << step;
  }
}

TEST(CFStringTest, RangesOutOfBoundsAreReportedAndDoNothing) {
  const CFRange ranges[] = {{0, 4}, {4, 0}, {4, 1}, {3, 1}, {-1, 1}, {0, -1}, {1, kFar}, {kFar, kFar}, {-kFar, kFar}};
  using Edit = std::function<void(CFMutableStringRef, CFRange)>;
  UniChar untouched[8] = {0xBEEF, 0xBEEF, 0xBEEF, 0xBEEF};
  const std::pair<const char*, Edit> edits[] = {
      {"CFStringDelete", [](CFMutableStringRef string, CFRange range) { CFStringDelete(string, range); }},
      {"CFStringReplace", [](CFMutableStringRef string, CFRange range) { CFStringReplace(string, range, CFSTR("x")); }},
      {"CFStringGetCharacters",
       [&](CFMutableStringRef string, CFRange range) { CFStringGetCharacters(string, range, untouched); }},
      {"CFStringCompareWithOptions",
       [](CFMutableStringRef string, CFRange range) {
         EXPECT_EQ(CFStringCompareWithOptions(string, CFSTR(""), range, 0), kCFCompareEqualTo);
       }},
  };
  for (const auto& [name, edit] : edits) {
    for (const CFRange range : ranges) {
      SCOPED_TRACE(std::string(name) + " " + std::to_string(range.location) + " " + std::to_string(range.length));
      const auto string = MakeMutable(u"abc");
      Capture errors(STDERR_FILENO);
      edit(string.get(), range);
      const std::string report = errors.text();
      EXPECT_TRUE(report.starts_with(name)) << report;
      EXPECT_NE(report.find(std::to_string(range.location)), std::string::npos) << report;
      EXPECT_EQ(TextOf(string.get()), u"abc");
      EXPECT_EQ(untouched[0], 0xBEEF);
    }
  }
}

TEST(CFStringTest, OtherRefusalsAreReportedToo) {
  const auto string = MakeMutable(u"abc");
  const CFOwned<CFMutableStringRef> full(CFStringCreateMutable(nullptr, 2));
  Capture errors(STDERR_FILENO);
  CFStringInsert(string.get(), 4, CFSTR("x"));
  CFStringInsert(string.get(), -1, CFSTR("x"));
  EXPECT_EQ(CFStringGetCharacterAtIndex(string.get(), 3), 0);
  EXPECT_EQ(CFStringCreateWithSubstring(nullptr, string.get(), {2, 2}), nullptr);
  CFStringAppend(full.get(), CFSTR("ab"));
  CFStringAppend(full.get(), CFSTR("c"));
  CFStringDelete(const_cast<CFMutableStringRef>(CFSTR("constant")), {0, 1});
  const std::string report = errors.text();
  EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 6) << report;
  EXPECT_EQ(TextOf(string.get()), u"abc");
  EXPECT_EQ(TextOf(full.get()), u"ab");
  EXPECT_EQ(TextOf(CFSTR("constant")), u"constant");
}

TEST(CFStringTest, SubstringsOfLengthZeroAreEmptyAnywhere) {
  Capture errors(STDERR_FILENO);
  const CFOwned<CFStringRef> part(CFStringCreateWithSubstring(nullptr, CFSTR("abc"), {10, 0}));
  EXPECT_EQ(errors.text(), "");
  ASSERT_NE(part, nullptr);
  EXPECT_EQ(CFStringGetLength(part.get()), 0);
}

TEST(CFStringTest, CombinesStrings) {
  const CFTypeRef items[] = {CFSTR("a"), nullptr, CFSTR("bc")};
  const CFOwned<CFArrayRef> array(CFArrayCreate(nullptr, items, 3));
  const CFOwned<CFStringRef> joined(CFStringCreateByCombiningStrings(nullptr, array.get(), CFSTR(", ")));
  EXPECT_EQ(TextOf(joined.get()), u"a, , bc");
  const CFOwned<CFStringRef> plain(CFStringCreateByCombiningStrings(nullptr, array.get(), nullptr));
  EXPECT_EQ(TextOf(plain.get()), u"abc");
  const CFOwned<CFArrayRef> none(CFArrayCreate(nullptr, nullptr, 0));
  const CFOwned<CFStringRef> empty(CFStringCreateByCombiningStrings(nullptr, none.get(), CFSTR(", ")));
  EXPECT_EQ(CFStringGetLength(empty.get()), 0);
}

TEST(CFStringTest, ArraysKeepTheirObjects) {
  auto string = MakeString(u"kept");
  const CFTypeRef items[] = {string.get()};
  const CFOwned<CFArrayRef> array(CFArrayCreate(nullptr, items, 1));
  string.reset();
  EXPECT_EQ(TextOf(static_cast<CFStringRef>(CFArrayGetValueAtIndex(array.get(), 0))), u"kept");
  Capture errors(STDERR_FILENO);
  EXPECT_EQ(CFArrayGetValueAtIndex(array.get(), 1), nullptr);
  EXPECT_EQ(CFArrayGetValueAtIndex(array.get(), -1), nullptr);
  EXPECT_NE(errors.text(), "");
}

TEST(CFStringTest, FindsUnitByUnit) {
  struct Row {
    const char16_t* text;
    const char16_t* wanted;
    CFIndex first;
    CFIndex last;
  };
  const Row rows[] = {
      {u"abcabc", u"bc", 1, 4},     {u"abc", u"abc", 0, 0},
      {u"abc", u"abcd", -1, -1},    {u"abc", u"", -1, -1},
      {u"", u"a", -1, -1},          {u"aaa", u"aa", 0, 1},
      {u"abc", u"B", -1, -1},       {u"caf\u00e9", u"e\u0301", -1, -1},
      {u"\U0001F600x", u"x", 2, 2},
  };
  for (const Row& row : rows) {
    const auto text = MakeString(row.text);
    const auto wanted = MakeString(row.wanted);
    EXPECT_EQ(CFStringFind(text.get(), wanted.get(), 0).location, row.first);
    EXPECT_EQ(CFStringFind(text.get(), wanted.get(), kCFCompareBackwards).location, row.last);
    EXPECT_EQ(CFStringFind(text.get(), wanted.get(), 0).length, row.first < 0 ? 0 : CFStringGetLength(wanted.get()));
  }
}

TEST(CFStringTest, ShowsTextOnStandardError) {
  Capture errors(STDERR_FILENO);
  CFShow(MakeString(u"gr\u00fcn \xD800!").get());
  CFShow(nullptr);
  EXPECT_EQ(errors.text(), "gr\xC3\xBCn \xEF\xBF\xBD!\n(null)\n");
}

TEST(CFStringTest, NullIsHarmless) {
  Capture errors(STDERR_FILENO);
  EXPECT_EQ(CFRetain(nullptr), nullptr);
  CFRelease(nullptr);
  EXPECT_EQ(CFStringCreateWithCString(nullptr, nullptr, kCFStringEncodingUTF8), nullptr);
  EXPECT_EQ(CFStringCreateWithCharacters(nullptr, nullptr, 1), nullptr);
  EXPECT_EQ(CFStringCreateCopy(nullptr, nullptr), nullptr);
  EXPECT_EQ(CFStringCreateMutableCopy(nullptr, 0, nullptr), nullptr);
  EXPECT_EQ(CFStringGetLength(nullptr), 0);
  EXPECT_EQ(CFStringGetCharactersPtr(nullptr), nullptr);
  EXPECT_EQ(CFStringFind(nullptr, CFSTR("a"), 0).location, kCFNotFound);
  EXPECT_EQ(CFStringFind(CFSTR("a"), nullptr, 0).location, kCFNotFound);
  CFStringInsert(nullptr, 0, CFSTR("a"));
  CFStringAppend(nullptr, nullptr);
  CFStringDelete(nullptr, {0, 1});
  char buffer[4] = "xyz";
  EXPECT_FALSE(CFStringGetCString(nullptr, buffer, 4, kCFStringEncodingUTF8));
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(errors.text(), "");
}

}  // namespace
