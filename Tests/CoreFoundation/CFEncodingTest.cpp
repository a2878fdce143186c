// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFString.h"

#include "Tests/CoreFoundation/CFTestText.h"

#include <cstring>
#include <map>
#include <optional>

namespace {

std::optional<std::string> CString(CFStringRef string, CFStringEncoding encoding) {
  char buffer[64];
  if (!CFStringGetCString(string, buffer, sizeof buffer, encoding)) {
    EXPECT_STREQ(buffer, "");
    return std::nullopt;
  }
  return buffer;
}

std::optional<std::u16string> Decoded(std::string_view bytes, CFStringEncoding encoding) {
  const CFOwned<CFStringRef> string(CFStringCreateWithBytes(
      nullptr, reinterpret_cast<const std::uint8_t*>(bytes.data()), static_cast<CFIndex>(bytes.size()), encoding));
  if (!string) return std::nullopt;
  return TextOf(string.get());
}

// What can be written is exactly what can be read: nothing is approximated, nothing is dropped.
TEST(CFEncodingTest, MacRomanIsStrictForEveryUnit) {
  std::map<char16_t, char> table;
  for (int byte = 0; byte < 256; ++byte) {
    const auto text = Decoded(std::string(1, static_cast<char>(byte)), kCFStringEncodingMacRoman);
    ASSERT_TRUE(text && text->size() == 1) << byte;
    table[(*text)[0]] = static_cast<char>(byte);
  }
  ASSERT_EQ(table.size(), 256u);
  for (unsigned unit = 1; unit < 0x10000; ++unit) {
    const auto known = table.find(static_cast<char16_t>(unit));
    const auto bytes =
        CString(MakeString(std::u16string(1, static_cast<char16_t>(unit))).get(), kCFStringEncodingMacRoman);
    if (known == table.end()) {
      ASSERT_FALSE(bytes) << std::hex << unit;
    } else {
      ASSERT_EQ(bytes, std::string(1, known->second)) << std::hex << unit;
    }
  }
}

TEST(CFEncodingTest, KnownCharactersAndBytesThatMeanNothing) {
  constexpr std::nullopt_t none = std::nullopt;
  const struct {
    CFStringEncoding encoding;
    std::string_view bytes;
    std::optional<std::u16string> text;
  } rows[] = {
      {kCFStringEncodingMacRoman, "A\x7F\x80\x8E\xA5\xBD\xC9\xCA\xDB\xDE\xF0\xF5\xFF",
       u"A\x7F\u00C4\u00E9\u2022\u03A9\u2026\u00A0\u20AC\uFB01\uF8FF\u0131\u02C7"},
      {kCFStringEncodingShiftJIS, "\x93\xFA\x96\x7B", u"\u65E5\u672C"},
      {kCFStringEncodingShiftJIS, "\x93", none},
      {kCFStringEncodingEUC_JP, "\xC6\xFC\xCB\xDC", u"\u65E5\u672C"},
      {kCFStringEncodingKOI8_R, "\xCD\xC9\xD2", u"\u043C\u0438\u0440"},
      {kCFStringEncodingWindowsCyrillic, "\xEC\xE8\xF0", u"\u043C\u0438\u0440"},
      {kCFStringEncodingGB_18030_2000, "\x94\x39\xFC\x36", u"\U0001F600"},
      {kCFStringEncodingUTF16BE, std::string_view("\xD8\x3D\xDE\x00", 4), u"\U0001F600"},
      {kCFStringEncodingUTF16BE, "\xD8\x3D", none},  // half a pair
      {kCFStringEncodingUTF32LE, std::string_view("\x00\xF6\x01\x00", 4), u"\U0001F600"},
      {kCFStringEncodingWindowsLatin1, "\x80", u"\u20AC"},
      {kCFStringEncodingISOLatin1, "\xE9", u"\u00E9"},
      {kCFStringEncodingASCII, "\xE9", none},
      {0x12345678, "text", none},  // no encoding
      {kCFStringEncodingUTF8, "\xF4\x8F\xBF\xBF\xE2\x82\xAC", u"\U0010FFFF\u20AC"},
  };
  for (const auto& row : rows) EXPECT_EQ(Decoded(row.bytes, row.encoding), row.text) << std::hex << row.encoding;
  for (const char* bytes : {"\x80", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                            "\xF8\x88\x80\x80\x80", "ab\xC3", "\xE2\x82", "\xFF"}) {
    EXPECT_FALSE(Decoded(bytes, kCFStringEncodingUTF8)) << bytes;
  }
}

TEST(CFEncodingTest, LoneSurrogatesSurviveAllButConversion) {
  const std::u16string bad = {u'a', 0xDC00, u'b', 0xD800};
  const auto string = MakeString(bad);
  const auto copy = MakeMutable(bad);
  CFStringInsert(copy.get(), 1, string.get());
  EXPECT_EQ(TextOf(copy.get()), u"a" + bad + bad.substr(1));
  EXPECT_FALSE(CString(string.get(), kCFStringEncodingUTF8));
  EXPECT_EQ(CFStringCopyUTF8(string.get()),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD");
}

TEST(CFEncodingTest, BuffersAreNeverOverrun) {
  const auto string = MakeString(u"\u00e9\u00e9");  // two bytes in Mac OS Roman, four in UTF-8
  for (CFIndex size = 0; size <= 6; ++size) {
    for (const CFStringEncoding encoding : {kCFStringEncodingMacRoman, kCFStringEncodingUTF8}) {
      const CFIndex needed = encoding == kCFStringEncodingUTF8 ? 5 : 3;
      char buffer[8];
      std::memset(buffer, '#', sizeof buffer);
      EXPECT_EQ(CFStringGetCString(string.get(), buffer, size, encoding), size >= needed);
      for (CFIndex i = size; i < 8; ++i) EXPECT_EQ(buffer[i], '#');
      if (size > 0 && size < needed) {
        EXPECT_EQ(buffer[0], '\0');
      }
    }
  }
  EXPECT_FALSE(CFStringGetCString(string.get(), nullptr, 8, kCFStringEncodingUTF8));
}

}  // namespace
