// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFString.h"

#include "Tests/CoreFoundation/CFTestText.h"
#include "Tests/Support/Tables.h"

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

CFOwned<CFStringRef> Decoded(std::string_view bytes, CFStringEncoding encoding) {
  return CFOwned<CFStringRef>(CFStringCreateWithBytes(nullptr, reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                                      static_cast<CFIndex>(bytes.size()), encoding));
}

// What can be written is exactly what can be read: nothing is approximated, nothing is dropped.
TEST(CFEncodingTest, MacRomanIsStrictForEveryUnit) {
  std::map<char16_t, char> table;
  for (int byte = 0; byte < 256; ++byte) {
    const auto text = Decoded(std::string(1, static_cast<char>(byte)), kCFStringEncodingMacRoman);
    ASSERT_TRUE(text && CFStringGetLength(text.get()) == 1) << byte;
    table[TextOf(text.get())[0]] = static_cast<char>(byte);
  }
  ASSERT_EQ(table.size(), 256u);
  for (unsigned unit = 1; unit < 0x10000; ++unit) {
    const auto known = table.find(static_cast<char16_t>(unit));
    const auto bytes =
        CString(MakeString(std::u16string(1, static_cast<char16_t>(unit))).get(), kCFStringEncodingMacRoman);
    ASSERT_EQ(bytes.has_value(), known != table.end()) << std::hex << unit;
    ASSERT_EQ(bytes.value_or(""), bytes ? std::string(1, known->second) : "") << std::hex << unit;
  }
}

TEST(CFEncodingTest, KnownCharactersAndBytesThatMeanNothing) {
  for (const Row& row : rowsOf("Encodings.txt")) {
    const auto string = Decoded(row[1], static_cast<CFStringEncoding>(std::stoul(row[0], nullptr, 16)));
    EXPECT_EQ(string ? CFStringCopyUTF8(string.get()) : "none", row[2]) << row[0];
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
