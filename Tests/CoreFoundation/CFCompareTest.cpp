// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFLocale.h"
#include "Tests/CoreFoundation/CFTestText.h"
#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>

namespace {

using Environment = std::map<std::string, std::string>;

void SetEnvironment(const Environment& environment) {
  for (const char* name : {"LANGUAGE", "LC_ALL", "LC_COLLATE", "LC_MESSAGES", "LANG"}) unsetenv(name);
  for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
}

constexpr CFStringCompareFlags kLocalizedFolded = kCFCompareLocalized | kCFCompareCaseInsensitive;

struct Row {
  const char16_t* a;
  const char16_t* b;
  CFStringCompareFlags options;
  int expected;
};

void ExpectRows(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    const auto a = MakeString(row.a);
    const auto b = MakeString(row.b);
    const std::string what = CFStringCopyUTF8(a.get()) + " / " + CFStringCopyUTF8(b.get());
    EXPECT_EQ(CFStringCompare(a.get(), b.get(), row.options), row.expected) << what;
    EXPECT_EQ(CFStringCompare(b.get(), a.get(), row.options), -row.expected) << what;
  }
}

// In a child, for the collators of a process stay as they were first made.
void ExpectRowsUnder(const Environment& environment, const std::vector<Row>& rows) {
  const ChildResult child = RunInChild([&] {
    SetEnvironment(environment);
    ExpectRows(rows);
    return ::testing::Test::HasFailure() ? 1 : 0;
  });
  EXPECT_TRUE(child.exitedWith(0)) << child.output << child.errors;
}

TEST(CFCompareTest, WithoutLocale) {
  ExpectRows({
      {u"", u"", 0, 0},
      {u"", u"a", 0, -1},
      {u"a", u"ab", 0, -1},
      {u"B", u"a", 0, -1},
      {u"\xFFFF", u"\U00010000", 0, 1},  // units, not characters
      {u"STRASSE", u"stra\u00dfe", kCFCompareCaseInsensitive, 0},
      {u"\u0391\u03A3", u"\u03B1\u03C2", kCFCompareCaseInsensitive, 0},
      {u"a", u"B", kCFCompareCaseInsensitive, -1},
      {u"caf\u00e9", u"cafe\u0301", 0, 1},
  });
  EXPECT_EQ(CFStringCompare(nullptr, nullptr, 0), kCFCompareEqualTo);
  EXPECT_EQ(CFStringCompare(nullptr, CFSTR(""), 0), kCFCompareLessThan);
  EXPECT_EQ(CFStringCompare(CFSTR(""), nullptr, 0), kCFCompareGreaterThan);
}

TEST(CFCompareTest, RangesOfTheFirstString) {
  EXPECT_EQ(CFStringCompareWithOptions(CFSTR("xabcx"), CFSTR("abc"), {1, 3}, 0), kCFCompareEqualTo);
  EXPECT_EQ(CFStringCompareWithOptions(CFSTR("xabcx"), CFSTR("abc"), {1, 2}, 0), kCFCompareLessThan);
  EXPECT_EQ(CFStringCompareWithOptions(CFSTR("xABCx"), CFSTR("abc"), {1, 3}, kCFCompareCaseInsensitive),
            kCFCompareEqualTo);
}

TEST(CFCompareTest, ByTheRulesOfTheLocale) {
  const std::vector<Row> everywhere = {
      {u"a", u"B", kCFCompareLocalized, -1},
      {u"a", u"A", kCFCompareLocalized, -1},
      {u"a", u"A", kLocalizedFolded, 0},
      {u"resume", u"r\u00e9sum\u00e9", kLocalizedFolded, -1},
      {u"caf\u00e9", u"cafe\u0301", kCFCompareLocalized, 0},
      {u"\u1ea5", u"a\u0301\u0302", kCFCompareLocalized, 1},
      {u"x\xD800", u"x", kCFCompareLocalized, 1},
  };
  std::vector<Row> swedish = everywhere;
  std::vector<Row> root = everywhere;
  swedish.push_back({u"z", u"\u00e4", kCFCompareLocalized, -1});
  root.push_back({u"z", u"\u00e4", kCFCompareLocalized, 1});
  ExpectRowsUnder({{"LANG", "sv_SE.UTF-8"}}, swedish);
  ExpectRowsUnder({{"LANG", "en_US.UTF-8"}, {"LC_COLLATE", "sv_SE"}}, swedish);
  ExpectRowsUnder({{"LC_ALL", "de_DE.UTF-8"}, {"LANG", "sv_SE.UTF-8"}}, root);
  for (const char* locale : {"C", "POSIX", "C.UTF-8", "xx_YY", "../../etc", "\xFF\xFE"}) {
    SCOPED_TRACE(locale);
    ExpectRowsUnder({{"LC_ALL", locale}, {"LANG", "sv_SE"}}, root);
  }
  ExpectRowsUnder({}, root);
  ExpectRowsUnder({{"LC_ALL", ""}, {"LANG", "sv_SE"}}, swedish);
}

TEST(CFLocaleTest, PreferredLanguages) {
  using Names = std::vector<std::string>;
  const std::pair<Environment, Names> rows[] = {
      {{}, {}},
      {{{"LANG", "de"}}, {"de"}},
      {{{"LANG", "pt_BR.UTF-8"}}, {"pt_BR", "pt-BR", "pt"}},
      {{{"LANG", "zh_Hans_CN"}}, {"zh_Hans_CN", "zh-Hans-CN", "zh_Hans", "zh-Hans", "zh"}},
      {{{"LANG", "fr"}, {"LC_MESSAGES", "de"}}, {"de"}},
      {{{"LANG", "fr"}, {"LC_MESSAGES", "de"}, {"LC_ALL", "it@euro"}}, {"it"}},
      {{{"LANG", "fr"}, {"LANGUAGE", "sv:en_GB"}}, {"sv", "en_GB", "en-GB", "en"}},
      {{{"LANG", "fr"}, {"LANGUAGE", ":C:/etc:../x:da:"}}, {"da"}},
      {{{"LANG", "C.UTF-8"}, {"LANGUAGE", "sv"}}, {}},
      {{{"LC_ALL", "POSIX"}, {"LANG", "fr"}}, {}},
      {{{"LANG", "_"}}, {"_", "-"}},
  };
  for (const auto& [environment, expected] : rows) {
    const ChildResult child = RunInChild([&environment = environment] {
      SetEnvironment(environment);
      for (const std::string& language : CFPreferredLanguages()) std::printf("%s\n", language.c_str());
      return 0;
    });
    std::string joined;
    for (const std::string& name : expected) joined += name + "\n";
    EXPECT_EQ(child.output, joined);
  }
}

}  // namespace
