// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFLocale.h"
#include "Tests/CoreFoundation/CFTestText.h"
#include "Tests/Support/ChildProcess.h"

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
  EXPECT_EQ(CFStringCompareWithOptions(CFSTR("xabcx"), CFSTR("abc"), {1, 3}, 0), kCFCompareEqualTo);
  EXPECT_EQ(CFStringCompareWithOptions(CFSTR("xABCx"), CFSTR("abc"), {1, 2}, kCFCompareCaseInsensitive), -1);
}

TEST(CFCompareTest, ByTheRulesOfTheLocale) {
  std::vector<Row> rows = {
      {u"a", u"B", kCFCompareLocalized, -1},
      {u"a", u"A", kCFCompareLocalized, -1},
      {u"a", u"A", kLocalizedFolded, 0},
      {u"resume", u"r\u00e9sum\u00e9", kLocalizedFolded, -1},
      {u"caf\u00e9", u"cafe\u0301", kCFCompareLocalized, 0},
      {u"\u1ea5", u"a\u0301\u0302", kCFCompareLocalized, 1},
      {u"x\xD800", u"x", kCFCompareLocalized, 1},
      {u"z", u"\u00e4", kCFCompareLocalized, 1},
  };
  std::vector<std::pair<Environment, bool>> environments = {
      {{{"LANG", "sv_SE.UTF-8"}}, true},
      {{{"LANG", "en_US.UTF-8"}, {"LC_COLLATE", "sv_SE"}}, true},
      {{{"LC_ALL", ""}, {"LANG", "sv_SE"}}, true},
      {{}, false},
  };
  for (const char* locale : {"de_DE.UTF-8", "C", "POSIX", "C.UTF-8", "xx_YY", "../../etc", "\xFF\xFE"}) {
    environments.push_back({{{"LC_ALL", locale}, {"LANG", "sv_SE.UTF-8"}}, false});
  }
  for (const auto& [environment, isSwedish] : environments) {
    SCOPED_TRACE(testing::PrintToString(environment));
    rows.back().expected = isSwedish ? -1 : 1;
    // In a child, for the collators of a process stay as they were first made.
    const ChildResult child = RunInChild([&, &environment = environment] {
      SetEnvironment(environment);
      ExpectRows(rows);
      return ::testing::Test::HasFailure() ? 1 : 0;
    });
    EXPECT_TRUE(child.exitedWith(0)) << child.output << child.errors;
  }
}

TEST(CFLocaleTest, PreferredLanguages) {
  const std::pair<Environment, const char*> rows[] = {
      {{}, ""},
      {{{"LANG", "de"}}, "de\n"},
      {{{"LANG", "pt_BR.UTF-8"}}, "pt_BR\npt-BR\npt\n"},
      {{{"LANG", "zh_Hans_CN"}}, "zh_Hans_CN\nzh-Hans-CN\nzh_Hans\nzh-Hans\nzh\n"},
      {{{"LANG", "fr"}, {"LC_MESSAGES", "de"}}, "de\n"},
      {{{"LANG", "fr"}, {"LC_MESSAGES", "de"}, {"LC_ALL", "it@euro"}}, "it\n"},
      {{{"LANG", "fr"}, {"LANGUAGE", "sv:en_GB"}}, "sv\nen_GB\nen-GB\nen\n"},
      {{{"LANG", "fr"}, {"LANGUAGE", ":C:/etc:../x:da:"}}, "da\n"},
      {{{"LANG", "C.UTF-8"}, {"LANGUAGE", "sv"}}, ""},
      {{{"LC_ALL", "POSIX"}, {"LANG", "fr"}}, ""},
      {{{"LANG", "_"}}, "_\n-\n"},
  };
  for (const auto& [environment, expected] : rows) {
    const ChildResult child = RunInChild([&environment = environment] {
      SetEnvironment(environment);
      for (const std::string& language : CFPreferredLanguages()) std::printf("%s\n", language.c_str());
      return 0;
    });
    EXPECT_EQ(child.output, expected);
  }
}

}  // namespace
