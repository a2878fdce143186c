// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFString.h"

#include "Tests/CoreFoundation/CFTestText.h"
#include "Tests/Support/ChildProcess.h"

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
  CFStringReplace(second.get(), {0, 1}, second.get());
  CFStringAppendCString(second.get(), "\x8a", kCFStringEncodingMacRoman);
  CFStringAppendCString(second.get(), "\x8a", kCFStringEncodingUTF8);  // invalid: nothing happens
  EXPECT_EQ(TextOf(original.get()) + TextOf(copy.get()) + TextOf(second.get()), u"one twoonee\u00e4");
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
    if (step % 4 == 0) {
      CFStringInsert(string.get(), range.location, MakeString(piece).get());
      expected.insert(from, piece);
    } else if (step % 4 == 1) {
      CFStringDelete(string.get(), range);
      expected.erase(from, count);
    } else {
      CFStringReplace(string.get(), range, MakeString(piece).get());
      expected.replace(from, count, piece);
    }
    ASSERT_EQ(TextOf(string.get()), expected) << "step " << step;
  }
}

TEST(CFStringTest, RangesOutOfBoundsAreReportedAndDoNothing) {
  const CFRange ranges[] = {{0, 4}, {4, 0}, {4, 1}, {3, 1}, {-1, 1}, {0, -1}, {1, kFar}, {kFar, kFar}, {-kFar, kFar}};
  using Edit = void (*)(CFMutableStringRef, CFRange);
  static UniChar untouched = 0xBEEF;
  const std::pair<const char*, Edit> edits[] = {
      {"CFStringDelete", [](auto string, auto range) { CFStringDelete(string, range); }},
      {"CFStringReplace", [](auto string, auto range) { CFStringReplace(string, range, CFSTR("x")); }},
      {"CFStringGetCharacters", [](auto string, auto range) { CFStringGetCharacters(string, range, &untouched); }},
      {"CFStringCompareWithOptions",
       [](auto string, auto range) { EXPECT_EQ(CFStringCompareWithOptions(string, CFSTR(""), range, 0), 0); }},
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
      EXPECT_EQ(untouched, 0xBEEF);
    }
  }
}

TEST(CFStringTest, OtherRefusalsAreReportedTooButEmptySubstringsAreNone) {
  const auto string = MakeMutable(u"abc");
  const CFOwned<CFMutableStringRef> full(CFStringCreateMutable(nullptr, 2));
  const CFTypeRef items[] = {string.get()};
  const CFOwned<CFArrayRef> array(CFArrayCreate(nullptr, items, 1));
  Capture errors(STDERR_FILENO);
  CFStringInsert(string.get(), 4, CFSTR("x"));
  CFStringInsert(string.get(), -1, CFSTR("x"));
  EXPECT_EQ(CFStringGetCharacterAtIndex(string.get(), 3), 0);
  EXPECT_EQ(CFStringCreateWithSubstring(nullptr, string.get(), {2, 2}), nullptr);
  CFStringAppend(full.get(), CFSTR("ab"));
  CFStringAppend(full.get(), CFSTR("c"));
  CFStringDelete(const_cast<CFMutableStringRef>(CFSTR("constant")), {0, 1});
  for (const CFIndex i : {1, -1}) EXPECT_EQ(CFArrayGetValueAtIndex(array.get(), i), nullptr);
  const std::string report = errors.text();
  EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 8) << report;
  EXPECT_EQ(TextOf(string.get()) + TextOf(full.get()) + TextOf(CFSTR("constant")), u"abcabconstant");
  Capture none(STDERR_FILENO);
  const CFOwned<CFStringRef> part(CFStringCreateWithSubstring(nullptr, CFSTR("abc"), {10, 0}));
  EXPECT_EQ(none.text(), "");
  EXPECT_TRUE(part && CFStringGetLength(part.get()) == 0);
}

TEST(CFStringTest, ArraysKeepTheirStringsWhichCombine) {
  auto kept = MakeString(u"bc");
  const CFTypeRef items[] = {CFSTR("a"), nullptr, kept.get()};
  const CFOwned<CFArrayRef> array(CFArrayCreate(nullptr, items, 3)), none(CFArrayCreate(nullptr, nullptr, 0));
  kept.reset();
  const auto joined = [](CFArrayRef strings, CFStringRef separator) {
    return TextOf(CFOwned<CFStringRef>(CFStringCreateByCombiningStrings(nullptr, strings, separator)).get());
  };
  EXPECT_EQ(joined(array.get(), CFSTR(", ")), u"a, , bc");
  EXPECT_EQ(joined(array.get(), nullptr), u"abc");
  EXPECT_EQ(joined(none.get(), CFSTR(", ")), u"");
}

TEST(CFStringTest, FindsUnitByUnit) {
  const std::u16string texts[] = {u"",     u"a", u"aa", u"aaa",       u"abc",     u"abcabc",      u"bc",
                                  u"abcd", u"B", u"x",  u"caf\u00e9", u"e\u0301", u"\U0001F600x", u"\xDE00"};
  for (const std::u16string& text : texts) {
    for (const std::u16string& wanted : texts) {
      const auto expected = [&](std::size_t at) { return wanted.empty() ? -1 : static_cast<CFIndex>(at); };
      const auto in = MakeString(text), what = MakeString(wanted);
      const CFRange first = CFStringFind(in.get(), what.get(), 0);
      EXPECT_EQ(first.location, expected(text.find(wanted)));
      EXPECT_EQ(first.length, first.location < 0 ? 0 : static_cast<CFIndex>(wanted.size()));
      EXPECT_EQ(CFStringFind(in.get(), what.get(), kCFCompareBackwards).location, expected(text.rfind(wanted)));
    }
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
  CFRelease(nullptr);
  for (const CFTypeRef none :
       {CFRetain(nullptr), CFTypeRef{CFStringCreateWithCString(nullptr, nullptr, 0)},
        CFTypeRef{CFStringCreateWithCharacters(nullptr, nullptr, 1)}, CFTypeRef{CFStringCreateCopy(nullptr, nullptr)},
        CFTypeRef{CFStringCreateMutableCopy(nullptr, 0, nullptr)}}) {
    EXPECT_EQ(none, nullptr);
  }
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
