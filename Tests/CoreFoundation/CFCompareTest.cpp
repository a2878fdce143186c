// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFLocale.h"
#include "Tests/CoreFoundation/CFTestText.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/Tables.h"

namespace {

// From words such as "LANG=de"; "." stands for none.
void SetEnvironment(const std::string& environment) {
  for (const char* name : {"LANGUAGE", "LC_ALL", "LC_COLLATE", "LC_MESSAGES", "LANG"}) unsetenv(name);
  std::istringstream words(environment);
  for (std::string word; words >> word;) {
    const std::size_t sign = word.find('=');
    if (sign != std::string::npos) setenv(word.substr(0, sign).c_str(), word.substr(sign + 1).c_str(), 1);
  }
}

CFOwned<CFStringRef> FromUTF8(const std::string& text) {
  return CFOwned<CFStringRef>(
      CFStringCreateWithCString(nullptr, text == "." ? "" : text.c_str(), kCFStringEncodingUTF8));
}

void ExpectOrder(CFStringRef a, CFStringRef b, CFStringCompareFlags options, int expected) {
  const std::string what = CFStringCopyUTF8(a) + " / " + CFStringCopyUTF8(b);
  EXPECT_EQ(CFStringCompare(a, b, options), expected) << what;
  EXPECT_EQ(CFStringCompare(b, a, options), -expected) << what;
}

void ExpectRows(bool localized, bool isSwedish) {
  for (const Row& row : rowsOf("Compare.txt")) {
    if (row[0].starts_with("l") != localized) continue;
    CFStringCompareFlags options = localized ? CFStringCompareFlags{kCFCompareLocalized} : 0;
    if (row[0].ends_with("i")) options |= kCFCompareCaseInsensitive;
    const std::string order = row[3] != "sv" ? row[3] : isSwedish ? "<" : ">";
    ExpectOrder(FromUTF8(row[1]).get(), FromUTF8(row[2]).get(), options, order == "<" ? -1 : order == ">" ? 1 : 0);
  }
}

TEST(CFCompareTest, WithoutLocale) {
  ExpectRows(false, false);
  EXPECT_EQ(CFStringCompare(nullptr, nullptr, 0), kCFCompareEqualTo);
  EXPECT_EQ(CFStringCompare(nullptr, CFSTR(""), 0), kCFCompareLessThan);
  EXPECT_EQ(CFStringCompare(CFSTR(""), nullptr, 0), kCFCompareGreaterThan);
  EXPECT_EQ(CFStringCompare(CFSTR(""), CFSTR(""), 0), kCFCompareEqualTo);
  EXPECT_EQ(CFStringCompareWithOptions(CFSTR("xabcx"), CFSTR("abc"), {1, 3}, 0), kCFCompareEqualTo);
  EXPECT_EQ(CFStringCompareWithOptions(CFSTR("xABCx"), CFSTR("abc"), {1, 2}, kCFCompareCaseInsensitive), -1);
}

TEST(CFCompareTest, ByTheRulesOfTheLocale) {
  std::vector<std::string> environments = {"LANG=sv_SE.UTF-8", "LANG=en_US.UTF-8 LC_COLLATE=sv_SE",
                                           "LC_ALL= LANG=sv_SE", "."};
  for (const char* locale : {"de_DE.UTF-8", "C", "POSIX", "C.UTF-8", "xx_YY", "../../etc", "\xFF\xFE"}) {
    environments.push_back(std::string("LANG=sv_SE.UTF-8 LC_ALL=") + locale);
  }
  for (std::size_t i = 0; i < environments.size(); ++i) {
    // In a child, for the collators of a process stay as they were first made.
    const ChildResult child = RunInChild([&] {
      SetEnvironment(environments[i]);
      ExpectRows(true, i < 3);
      ExpectOrder(MakeString(u"x\xD800").get(), CFSTR("x"), kCFCompareLocalized, 1);
      return ::testing::Test::HasFailure() ? 1 : 0;
    });
    EXPECT_TRUE(child.exitedWith(0)) << environments[i] << child.output << child.errors;
  }
}

TEST(CFLocaleTest, PreferredLanguages) {
  for (const Row& row : rowsOf("Preferences.txt")) {
    const ChildResult child = RunInChild([&row] {
      SetEnvironment(row[0]);
      std::string all;
      for (const std::string& language : CFPreferredLanguages()) all += (all.empty() ? "" : " ") + language;
      std::printf("%s", all.empty() ? "none" : all.c_str());
      return 0;
    });
    EXPECT_EQ(child.output, row[1]) << row[0];
  }
}

}  // namespace
