// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCString.h"

#include "Platform/Foundation/NSValues.h"
#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <fstream>
#include <functional>
#include <type_traits>

namespace {

static_assert(!std::is_copy_assignable_v<VortoString>);

using CText = std::unique_ptr<char, decltype(&std::free)>;

std::string Text(const VortoString& string) {
  return string.ns_str()->UTF8String();
}

std::string MacRoman(const VortoString& string) {
  const CText text(string.createCStr(), &std::free);
  return text ? text.get() : "(null)";
}

bool IsNull(const VortoString& string) {
  return CText(string.createCStr(), &std::free) == nullptr;
}

std::vector<unsigned short> Units(std::u16string_view text) {
  std::vector<unsigned short> units(text.begin(), text.end());
  units.push_back(0);
  return units;
}

TEST(TCStringTest, NullMeansEmpty) {
  const VortoString null;
  EXPECT_EQ(null.size(), 0u);
  EXPECT_TRUE(null.empty());
  EXPECT_EQ(CFStringGetLength(null.cf_str()), 0);
  EXPECT_NE(null.cf_str(), nullptr);
  EXPECT_EQ(Text(null), "");
  EXPECT_EQ(null.u_str(), nullptr);
  EXPECT_EQ(null.createCStr(), nullptr);
  EXPECT_EQ(null.createUTF8Str(), nullptr);
  EXPECT_EQ(null.createUniStr(), nullptr);
  EXPECT_EQ(null.get_OSType(), 0u);
  EXPECT_TRUE(IsNull(null.substr(0, 1)));
  EXPECT_TRUE(IsNull(VortoString(null)));
  EXPECT_TRUE(IsNull(VortoString(static_cast<const char*>(nullptr))));
  EXPECT_TRUE(IsNull(VortoString(static_cast<const unsigned short*>(nullptr))));
  const VortoString empty("");
  EXPECT_TRUE(empty.empty());
  EXPECT_FALSE(IsNull(empty));
  EXPECT_EQ(null.compare(null), 0);
  EXPECT_LT(null.compare(empty), 0);
  EXPECT_GT(empty.compare(null), 0);
  EXPECT_LT(null.compare(0, 5, empty), 0);
  EXPECT_GT(empty.caseInsensitiveCompare(0, 0, null), 0);
}

TEST(TCStringTest, TextComesInAndGoesOut) {
  const VortoString roman("caf\x8E \xA5");
  EXPECT_EQ(roman.size(), 6u);
  EXPECT_EQ(Text(roman), "caf\xC3\xA9 \xE2\x80\xA2");
  EXPECT_EQ(MacRoman(roman), "caf\x8E \xA5");
  const CText utf8(roman.createUTF8Str(), &std::free);
  EXPECT_STREQ(utf8.get(), "caf\xC3\xA9 \xE2\x80\xA2");
  const std::vector<unsigned short> units = Units(u"\u65E5\U0001F600");
  const VortoString wide(units.data());
  EXPECT_EQ(wide.size(), 3u);
  EXPECT_EQ(MacRoman(wide), "") << "not in Mac OS Roman";
  const CText wideUTF8(wide.createUTF8Str(), &std::free);
  EXPECT_STREQ(wideUTF8.get(), "\xE6\x97\xA5\xF0\x9F\x98\x80");
  const std::unique_ptr<unsigned short, decltype(&std::free)> copy(wide.createUniStr(), &std::free);
  EXPECT_EQ(std::memcmp(copy.get(), units.data(), 8), 0);
  EXPECT_EQ(std::memcmp(wide.u_str(), units.data(), 6), 0);
}

TEST(TCStringTest, CopiesAreIndependentAndSharingIsShared) {
  CFMutableStringRef source = CFStringCreateMutableCopy(nullptr, 0, CFSTR("abc"));
  const VortoString shared{static_cast<CFStringRef>(source)};
  EXPECT_EQ(CFGetRetainCount(source), 2);
  const VortoString copy(shared);
  VortoString set;
  set.set(shared);
  CFStringAppend(source, CFSTR("d"));
  EXPECT_EQ(Text(shared), "abcd");
  EXPECT_EQ(Text(copy), "abc");
  EXPECT_EQ(Text(set), "abc");
  CFRelease(source);
  EXPECT_EQ(Text(shared), "abcd");
}

TEST(TCStringTest, SetsFromEverySource) {
  VortoString string("old");
  const std::vector<unsigned short> units = Units(u"wide");
  string.set(units.data());
  EXPECT_EQ(Text(string), "wide");
  string.set(units.data(), 2);
  EXPECT_EQ(Text(string), "wi");
  string.set(CFSTR("cf"));
  EXPECT_EQ(Text(string), "cf");
  string.set(string);
  EXPECT_EQ(Text(string), "cf") << "set to itself";
  string.set(string.cf_str());
  EXPECT_EQ(Text(string), "cf");
  string.set(VortoString());
  EXPECT_TRUE(IsNull(string));
  string.set("text");
  string.set(static_cast<CFStringRef>(nullptr));
  EXPECT_TRUE(IsNull(string));
  string.set("text");
  string.clear();
  EXPECT_TRUE(IsNull(string));
}

TEST(TCStringTest, FourCharacterCodes) {
  struct Row {
    std::uint32_t code;
    const char* text;
    std::uint32_t readBack;
  };
  const Row rows[] = {
      {0x54455354, "'TEST'", 0x54455354},
      {0x41420000, "'AB'", 0},
      {0, "''", 0},
      {0x41004243, "'A", 0},
      {0x00414243, "'", 0},
      {0x414243A5, "'ABC\xA5'", 0xFFFFFFA5},
      {0x41A54243,
       "'A\xA5"
       "BC'",
       0xFFA54243},
      {0xA5414243,
       "'\xA5"
       "ABC'",
       0xA5414243},
      {0x4142A543,
       "'AB\xA5"
       "C'",
       0xFFFFA543},
  };
  for (const Row& row : rows) {
    VortoString string;
    string.setOSType(row.code);
    EXPECT_EQ(MacRoman(string), row.text) << std::hex << row.code;
    EXPECT_EQ(string.get_OSType(), row.readBack) << std::hex << row.code;
  }
  for (const char* text : {"TEST", "'TEST", "TEST''", "'TESTS'", "'TES'", "", "\"TEST\""}) {
    EXPECT_EQ(VortoString(text).get_OSType(), 0u) << text;
  }
  EXPECT_EQ(VortoString(Units(u"'\u65E5\u65E5\u65E5\u65E5'").data()).get_OSType(), 0u);
}

TEST(TCStringTest, Parts) {
  const VortoString string("abcdef");
  EXPECT_EQ(Text(string.substr(1, 3)), "bcd");
  EXPECT_EQ(Text(string.substrTo(3)), "ab") << "one less";
  EXPECT_EQ(Text(string.substrTo(7)), "abcdef");
  EXPECT_EQ(Text(string.substrTo(1)), "");
  EXPECT_EQ(Text(string.substrTo(0)), "");
  EXPECT_EQ(Text(string.substrFrom(4)), "ef");
  Capture errors(STDERR_FILENO);
  const VortoString beyond = VortoString("abc").substrFrom(10);
  EXPECT_FALSE(IsNull(beyond));
  EXPECT_TRUE(beyond.empty());
  EXPECT_EQ(errors.text(), "");
  Capture reported(STDERR_FILENO);
  EXPECT_TRUE(string.substr(4, 3).empty());
  EXPECT_TRUE(string.substr(0xFFFFFFFF, 0xFFFFFFFF).empty());
  EXPECT_TRUE(string.substrTo(8).empty());
  const std::string report = reported.text();
  EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 3) << report;
}

TEST(TCStringTest, ComparesAndFinds) {
  const VortoString string("xAbCx");
  EXPECT_LT(VortoString("a").compare(VortoString("B")), 0);
  EXPECT_NE(VortoString("abc").compare(VortoString("ABC")), 0);
  EXPECT_EQ(VortoString("abc").caseInsensitiveCompare(VortoString("ABC")), 0);
  EXPECT_EQ(string.caseInsensitiveCompare(1, 3, VortoString("abc")), 0);
  EXPECT_NE(string.compare(1, 3, VortoString("abc")), 0);
  EXPECT_EQ(string.compare(1, 3, VortoString("AbC")), 0);
  EXPECT_EQ(string.find(VortoString("bC")), 2);
  EXPECT_EQ(string.find(VortoString("bc")), -1);
  EXPECT_EQ(string.find(VortoString("")), -1);
  EXPECT_EQ(string.find(VortoString()), -1);
  EXPECT_EQ(VortoString().find(string), -1);
}

TEST(TCStringTest, Edits) {
  using Edit = std::function<void(VortoString&)>;
  const VortoString other("XY");
  const VortoString null;
  struct Row {
    const char* name;
    Edit edit;
    const char* expected;  // of "abc"
    bool reports = false;
  };
  const Row rows[] = {
      {"insert in front", [&](VortoString& s) { s.insert(0, other); }, "XYabc"},
      {"insert behind", [&](VortoString& s) { s.insert(3, other); }, "abcXY"},
      {"insert beyond", [&](VortoString& s) { s.insert(4, other); }, "abc", true},
      {"insert null", [&](VortoString& s) { s.insert(1, null); }, "abc"},
      {"insert itself", [&](VortoString& s) { s.insert(1, s); }, "aabcbc"},
      {"append", [&](VortoString& s) { s.append(other); }, "abcXY"},
      {"append null", [&](VortoString& s) { s.append(null); }, "abc"},
      {"append itself", [&](VortoString& s) { s.append(s); }, "abcabc"},
      {"append text", [&](VortoString& s) { s.append("\x8E"); }, "abc\x8E"},
      {"append null text", [&](VortoString& s) { s.append(static_cast<const char*>(nullptr)); }, "abc"},
      {"erase", [&](VortoString& s) { s.erase(1, 1); }, "ac"},
      {"erase nothing", [&](VortoString& s) { s.erase(9, 0); }, "abc"},
      {"erase beyond", [&](VortoString& s) { s.erase(2, 2); }, "abc", true},
      {"replace", [&](VortoString& s) { s.replace(0, 2, other); }, "XYc"},
      {"replace null", [&](VortoString& s) { s.replace(0, 2, null); }, "abc"},
      {"replace beyond", [&](VortoString& s) { s.replace(0xFFFFFFFF, 2, other); }, "abc", true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    VortoString string("abc");
    const VortoString before(string.cf_str());
    Capture errors(STDERR_FILENO);
    row.edit(string);
    EXPECT_EQ(errors.text() != "", row.reports);
    EXPECT_EQ(MacRoman(string), row.expected);
    EXPECT_EQ(Text(before), "abc") << "what cf_str() answered keeps its content";
  }
  VortoString empty;
  empty.insert(0, other);
  empty.erase(0, 1);
  empty.replace(0, 0, other);
  EXPECT_TRUE(IsNull(empty));
  empty.append(other);
  EXPECT_EQ(Text(empty), "XY");
  VortoString fromText;
  fromText.append("text");
  EXPECT_EQ(Text(fromText), "text");
}

TEST(TCStringTest, SprintfIsBounded) {
  VortoString string;
  string.sprintf("%d %s %.2f", 7, "x\x8E", 0.5);
  EXPECT_EQ(MacRoman(string), "7 x\x8E 0.50");
  string.sprintf("%s", MacRoman(string).c_str());
  EXPECT_EQ(MacRoman(string), "7 x\x8E 0.50");
  for (const std::size_t length : {2046, 2047, 2048, 100000}) {
    string.sprintf("%s", std::string(length, 'a').c_str());
    EXPECT_EQ(string.size(), std::min<std::size_t>(length, 2047));
  }
}

TEST(TCStringTest, UnimplementedOperationsReportTheirLines) {
  const std::pair<int, std::function<void(VortoString&)>> rows[] = {
      {470, [](VortoString& s) { s.compare(0, 1, s, 0); }},
      {516, [](VortoString& s) { s.caseInsensitiveCompare(0, 1, s, 0); }},
      {580, [](VortoString& s) { s.append(s, 0, 1); }},
      {648, [](VortoString& s) { s.append(Units(u"a").data()); }},
      {658, [](VortoString& s) { s.push_back('a'); }},
  };
  for (const auto& [line, operation] : rows) {
    const ChildResult child = RunInChild([&operation = operation] {
      unsetenv("tcPrintUseLogFile");
      VortoString string("abc");
      operation(string);
      return 0;
    });
    EXPECT_TRUE(child.killedBy(SIGABRT)) << line;
    EXPECT_EQ(child.output,
              "File TarnCore/TCString, line " + std::to_string(line) + " should not have been reached:\n\t");
  }
}

TEST(TCStringTest, Localized) {
  const TemporaryFolder folder;
  const std::filesystem::path contents = folder.path() + "/T.bundle/Contents";
  std::filesystem::create_directories(contents / "Resources/en.lproj");
  std::ofstream(contents / "Info.plist") << "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key>"
                                            "<string>test.strings</string></dict></plist>";
  std::ofstream(contents / "Resources/en.lproj/Localizable.strings") << "\"key\" = \"Value\";";
  setenv("LC_ALL", "C", 1);
  CFBundleRef bundle = CFBundleCreate(nullptr, folder.path() + "/T.bundle");
  ASSERT_NE(bundle, nullptr);
  const char* none = nullptr;
  EXPECT_EQ(Text(VortoString("key", "test.strings")), "Value");
  EXPECT_EQ(Text(VortoString(CFSTR("key"), "test.strings")), "Value");
  EXPECT_EQ(Text(VortoString(CFSTR("key"), CFSTR("test.strings"))), "Value");
  EXPECT_EQ(Text(VortoString(CFSTR("key"), bundle)), "Value");
  EXPECT_EQ(Text(VortoString("key", bundle)), "Value");
  EXPECT_EQ(Text(VortoString("unknown", bundle)), "unknown");
  EXPECT_EQ(Text(VortoString("key", "no.such.bundle")), "key");
  EXPECT_TRUE(IsNull(VortoString(none, "test.strings")));
  EXPECT_TRUE(IsNull(VortoString("key", none)));
  EXPECT_TRUE(IsNull(VortoString(CFSTR("key"), none)));
  EXPECT_TRUE(IsNull(VortoString(none, bundle)));
  CFRelease(bundle);
}

TEST(TCStringTest, SniffsTheEncoding) {
  const std::pair<const char*, const char*> rows[] = {
      {"plain", "plain"},
      {"", ""},
      {"ab", "ab"},
      {"Gr\xC3\xB6\xC3\x9F"
       "e",
       "Gr\xC3\xB6\xC3\x9F"
       "e"},
      {"\xE9t\xE9 fran\xE7"
       "ais, o\xF9 \xEAtes-vous? Voil\xE0 le texte que nous lisons aujourd'hui.",
       "\xC3\xA9t\xC3\xA9 fran\xC3\xA7"
       "ais, o\xC3\xB9 \xC3\xAAtes-vous? Voil\xC3\xA0 le texte que nous lisons "
       "aujourd'hui."},
  };
  for (const auto& [bytes, expected] : rows) {
    CFStringRef string = CFStringCreateWithSniffingEncoding(bytes);
    ASSERT_NE(string, nullptr);
    EXPECT_EQ(CFStringCopyUTF8(string), expected);
    CFRelease(string);
  }
  for (int byte = 1; byte < 256; ++byte) {  // every text gives a string
    for (const std::string& text : {std::string(1, static_cast<char>(byte)), std::string(2, static_cast<char>(byte))}) {
      CFStringRef string = CFStringCreateWithSniffingEncoding(text.c_str());
      EXPECT_NE(string, nullptr);
      CFRelease(string);
    }
  }
  EXPECT_EQ(CFStringCreateWithSniffingEncoding(nullptr), nullptr);
}

}  // namespace
