// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCString.h"

#include "Platform/Foundation/NSValues.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/Tables.h"

#include <csignal>
#include <type_traits>

namespace {

using S = VortoString;
using CText = std::unique_ptr<char, decltype(&std::free)>;
using Act = std::function<void(S&)>;

// In Mac OS Roman; "(null)" for a null string, "" for what the encoding does not have.
std::string Roman(const S& string) {
  const CText text(string.createCStr(), &std::free);
  return text ? text.get() : "(null)";
}
std::string UTF8(const S& string) {
  const CText text(string.createUTF8Str(), &std::free);
  return text ? text.get() : "(null)";
}

constexpr const char* kNone = nullptr;
const unsigned short kWide[] = {0x65E5, 0xD83D, 0xDE00, 0};

// What is done to "abc", and to a null string, and what comes out of both. Refusals are reported.
TEST(TCStringTest, Changes) {
  const S other("XY"), null;
  const struct {
    const char* name;
    Act act;
    const char* expected;
    const char* ofNull;
    bool reports = false;
  } rows[] = {
      {"insert in front", [&](S& s) { s.insert(0, other); }, "XYabc", "(null)"},
      {"insert behind", [&](S& s) { s.insert(3, other); }, "abcXY", "(null)"},
      {"insert beyond", [&](S& s) { s.insert(4, other); }, "abc", "(null)", true},
      {"insert null", [&](S& s) { s.insert(1, null); }, "abc", "(null)"},
      {"insert itself", [&](S& s) { s.insert(1, s); }, "aabcbc", "(null)"},
      {"append", [&](S& s) { s.append(other); }, "abcXY", "XY"},
      {"append null", [&](S& s) { s.append(null); }, "abc", "(null)"},
      {"append itself", [&](S& s) { s.append(s); }, "abcabc", "(null)"},
      {"append text", [&](S& s) { s.append("\x8E"); }, "abc\x8E", "\x8E"},
      {"append null text", [&](S& s) { s.append(kNone); }, "abc", "(null)"},
      {"erase", [&](S& s) { s.erase(1, 1); }, "ac", "(null)"},
      {"erase nothing", [&](S& s) { s.erase(9, 0); }, "abc", "(null)"},
      {"erase beyond", [&](S& s) { s.erase(2, 2); }, "abc", "(null)", true},
      {"replace", [&](S& s) { s.replace(0, 2, other); }, "XYc", "(null)"},
      {"replace null", [&](S& s) { s.replace(0, 2, null); }, "abc", "(null)"},
      {"replace beyond", [&](S& s) { s.replace(0xFFFFFFFF, 2, other); }, "abc", "(null)", true},
      {"set", [&](S& s) { s.set(other); }, "XY", "XY"},
      {"assign", [&](S& s) { s = other; }, "XY", "XY"},
      {"assign null", [&](S& s) { s = null; }, "(null)", "(null)"},
      {"assign itself", [&](S& s) { s = *&s; }, "abc", "(null)"},
      {"move", [&](S& s) { s = S(other); }, "XY", "XY"},
      {"set null", [&](S& s) { s.set(null); }, "(null)", "(null)"},
      {"set itself", [&](S& s) { s.set(s); }, "abc", "(null)"},
      {"set its own string", [&](S& s) { s.set(s.cf_str()); }, "abc", ""},
      {"set text", [&](S& s) { s.set("\xA5"); }, "\xA5", "\xA5"},
      {"set units", [&](S& s) { s.set(S("wide").u_str(), 2); }, "wi", "wi"},
      {"set units up to 0", [&](S& s) { s.set(kWide + 3); }, "", ""},
      {"set units of no Roman", [&](S& s) { s.set(kWide); }, "", ""},
      {"set string", [&](S& s) { s.set(CFSTR("cf")); }, "cf", "cf"},
      {"set null string", [&](S& s) { s.set(CFStringRef{}); }, "(null)", "(null)"},
      {"clear", [&](S& s) { s.clear(); }, "(null)", "(null)"},
      {"sprintf", [&](S& s) { s.sprintf("%d %s %.2f", 7, "x\x8E", 0.5); }, "7 x\x8E 0.50", "7 x\x8E 0.50"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    S string("abc"), empty;
    const S before(string.cf_str());
    Capture errors(STDERR_FILENO);
    row.act(string);
    EXPECT_EQ(errors.text() != "", row.reports);
    row.act(empty);
    EXPECT_EQ((Row{Roman(string), Roman(empty)}), (Row{row.expected, row.ofNull}));
    EXPECT_EQ(UTF8(before), "abc") << "what cf_str() returned keeps its content";
  }
  for (const std::size_t length : {2046, 2047, 2048, 100000}) {
    S string;
    string.sprintf("%s", std::string(length, 'a').c_str());
    EXPECT_EQ(string.size(), std::min<std::size_t>(length, 2047));
  }
}

TEST(TCStringTest, ComesInGoesOutAndGivesParts) {
  const S roman("caf\x8E \xA5"), wide(kWide), text("abcdef"), null;
  Capture errors(STDERR_FILENO);
  const std::pair<std::string, std::string> rows[] = {
      {UTF8(roman), "caf\xC3\xA9 \xE2\x80\xA2"},
      {roman.ns_str()->UTF8String(), "caf\xC3\xA9 \xE2\x80\xA2"},
      {Roman(roman), "caf\x8E \xA5"},
      {Roman(wide), ""},
      {UTF8(wide), "\xE6\x97\xA5\xF0\x9F\x98\x80"},
      {Roman(text.substr(1, 3)), "bcd"},
      {Roman(text.substrTo(3)), "ab"},  // one less
      {Roman(text.substrTo(7)), "abcdef"},
      {Roman(text.substrTo(1)), ""},
      {Roman(text.substrTo(0)), ""},
      {Roman(text.substrFrom(4)), "ef"},
      {Roman(S("abc").substrFrom(10)), ""},
      {Roman(null.substr(0, 1)), "(null)"},
      {Roman(S(null)), "(null)"},
      {Roman(S(kNone)), "(null)"},
      {Roman(S(static_cast<const unsigned short*>(nullptr))), "(null)"},
      {UTF8(null), "(null)"},
      {null.ns_str()->UTF8String(), ""},
      {errors.text(), ""},
  };
  for (const auto& [actual, expected] : rows) EXPECT_EQ(actual, expected) << "row " << &actual - &rows[0].first;
  const std::unique_ptr<unsigned short, decltype(&std::free)> copy(wide.createUniStr(), &std::free);
  EXPECT_EQ(std::memcmp(copy.get(), kWide, 8), 0);
  EXPECT_EQ(std::memcmp(wide.u_str(), kWide, 6), 0);
  EXPECT_EQ(wide.size() + roman.size() + null.size(), 9u);
  EXPECT_TRUE(null.empty() && S("").empty() && !wide.empty());
  EXPECT_TRUE(null.cf_str() && !null.u_str() && !null.createUniStr());
  Capture reports(STDERR_FILENO);
  EXPECT_TRUE(text.substr(4, 3).empty() && text.substr(0xFFFFFFFF, 0xFFFFFFFF).empty() && text.substrTo(8).empty());
  const std::string report = reports.text();
  EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 3) << report;
}

TEST(TCStringTest, CopiesAreIndependentAndSharingIsShared) {
  CFMutableStringRef source = CFStringCreateMutableCopy(nullptr, 0, CFSTR("abc"));
  const S shared{static_cast<CFStringRef>(source)};
  EXPECT_EQ(CFGetRetainCount(source), 2);
  const S copy(shared);
  S set, moved, sharing(shared.cf_str());
  const S& left = sharing;
  set.set(shared);
  moved = std::move(sharing);
  EXPECT_EQ(UTF8(left), "(null)");
  CFStringAppend(source, CFSTR("d"));
  CFRelease(source);
  EXPECT_EQ(UTF8(shared) + UTF8(copy) + UTF8(set) + UTF8(S(std::move(moved))), "abcdabcabcabc");
}

TEST(TCStringTest, FourCharacterCodes) {
  const auto number = [](const std::string& digits) {
    return static_cast<std::uint32_t>(std::stoul(digits, nullptr, 16));
  };
  for (const Row& row : rowsOf("FourCharacters.txt")) {
    S string;
    string.setOSType(number(row[0]));
    EXPECT_EQ(Roman(string), row[1]) << row[0];
    EXPECT_EQ(string.get_OSType(), number(row[2])) << row[0];
  }
  for (const char* text : {"TEST", "'TEST", "TEST''", "'TESTS'", "'TES'", "", "\"TEST\"", kNone}) {
    EXPECT_EQ(S(text).get_OSType(), 0u) << (text ? text : "");
  }
  const unsigned short wide[] = {'\'', 0x65E5, 0x65E5, 0x65E5, 0x65E5, '\'', 0};
  EXPECT_EQ(S(wide).get_OSType(), 0u);
}

TEST(TCStringTest, ComparesAndFinds) {
  const S string("xAbCx"), null, empty("");
  const auto sign = [](int v) { return v < 0 ? '<' : v > 0 ? '>' : '='; };
  const std::string orders = {sign(null.compare(null)),
                              sign(null.compare(empty)),
                              sign(empty.compare(null)),
                              sign(null.compare(0, 5, empty)),
                              sign(S("a").compare(S("B"))),
                              sign(empty.caseInsensitiveCompare(0, 0, null)),
                              sign(string.compare(1, 3, S("AbC"))),
                              sign(S("abc").caseInsensitiveCompare(S("ABC"))),
                              sign(string.caseInsensitiveCompare(1, 3, S("abc")))};
  EXPECT_EQ(orders, "=<><<>===");
  EXPECT_NE(S("abc").compare(S("ABC")), 0);
  EXPECT_NE(string.compare(1, 3, S("abc")), 0);
  EXPECT_EQ(string.find(S("bC")), 2);
  for (const S& wanted : {null, empty, S("bc")}) EXPECT_EQ(string.find(wanted), -1);
  EXPECT_EQ(null.find(string), -1);
}

TEST(TCStringTest, UnimplementedOperationsReportTheirLines) {
  const std::pair<int, Act> rows[] = {{470, [](S& s) { s.compare(0, 1, s, 0); }},
                                      {516, [](S& s) { s.caseInsensitiveCompare(0, 1, s, 0); }},
                                      {580, [](S& s) { s.append(s, 0, 1); }},
                                      {648, [](S& s) { s.append(kWide); }},
                                      {658, [](S& s) { s.push_back('a'); }}};
  for (const auto& [line, operation] : rows) {
    const ChildResult child = RunInChild([&operation = operation] {
      unsetenv("tcPrintUseLogFile");
      S string("abc");
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
  const CFStringRef key = CFSTR("key");
  const char* id = "test.strings";
  for (const S& found : {S("key", id), S(key, id), S(key, CFSTR("test.strings")), S(key, bundle), S("key", bundle)}) {
    EXPECT_EQ(UTF8(found), "Value");
  }
  EXPECT_EQ(UTF8(S("unknown", bundle)) + UTF8(S("key", "no.such.bundle")), "unknownkey");
  for (const S& null : {S(kNone, id), S("key", kNone), S(key, kNone), S(kNone, bundle)})
    EXPECT_EQ(UTF8(null), "(null)");
  CFRelease(bundle);
}

TEST(TCStringTest, SniffsTheEncoding) {
  const auto sniffed = [](const std::string& bytes) -> std::string {
    CFStringRef string = CFStringCreateWithSniffingEncoding(bytes.c_str());
    if (!string) return "(null)";
    const std::string text = CFStringCopyUTF8(string);
    CFRelease(string);
    return text;
  };
  for (const char* same : {"plain", "", "Gr\xC3\xB6\xC3\x9Fte"}) EXPECT_EQ(sniffed(same), same);
  EXPECT_EQ(sniffed("\xE9t\xE9, o\xF9 \xEAtes-vous? Voil\xE0 le texte que nous lisons aujourd'hui."),
            "\xC3\xA9t\xC3\xA9, o\xC3\xB9 \xC3\xAAtes-vous? Voil\xC3\xA0 le texte que nous lisons aujourd'hui.");
  for (int byte = 1; byte < 256; ++byte) {  // every text gives a string
    for (const std::size_t count : {1u, 2u}) EXPECT_NE(sniffed(std::string(count, static_cast<char>(byte))), "(null)");
  }
  EXPECT_EQ(CFStringCreateWithSniffingEncoding(nullptr), nullptr);
}

}  // namespace
