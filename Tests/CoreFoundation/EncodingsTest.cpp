// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFString.h"
#include "Platform/CoreFoundation/TextEncodingConversion.h"
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

std::vector<TextEncoding> Available() {
  ItemCount count = 0;
  EXPECT_EQ(TECCountAvailableSniffers(&count), noErr);
  std::vector<TextEncoding> encodings(count);
  EXPECT_EQ(TECGetAvailableSniffers(encodings.data(), count, &count), noErr);
  EXPECT_EQ(count, encodings.size());
  return encodings;
}

struct Ranking {
  std::vector<TextEncoding> encodings = Available();
  std::vector<ItemCount> errors = std::vector<ItemCount>(encodings.size());
  std::vector<ItemCount> features = errors;
};

Ranking Sniff(std::string_view text) {
  Ranking ranking;
  const auto count = static_cast<ItemCount>(ranking.encodings.size());
  TECSnifferObjectRef sniffer = nullptr;
  EXPECT_EQ(TECCreateSniffer(&sniffer, ranking.encodings.data(), count), noErr);
  EXPECT_EQ(TECSniffTextEncoding(sniffer, reinterpret_cast<const std::uint8_t*>(text.data()),
                                 static_cast<ItemCount>(text.size()), ranking.encodings.data(), count,
                                 ranking.errors.data(), count, ranking.features.data(), count),
            noErr);
  EXPECT_EQ(TECDisposeSniffer(sniffer), noErr);
  return ranking;
}

TEST(TextEncodingConversionTest, RanksTheLikelyEncodingFirst) {
  for (const Row& row : rowsOf("Likely.txt")) {
    const Ranking ranking = Sniff(row[1]);
    EXPECT_EQ(ranking.encodings[0], std::stoul(row[0], nullptr, 16)) << row[1];
    EXPECT_EQ(ranking.errors[0], 0u);
    EXPECT_TRUE(std::is_sorted(ranking.features.rbegin(), ranking.features.rend()));
    const std::vector<TextEncoding> all = Available();
    EXPECT_TRUE(std::is_permutation(all.begin(), all.end(), ranking.encodings.begin(), ranking.encodings.end()));
  }
}

TEST(TextEncodingConversionTest, CountsMalformedSequences) {
  const Ranking ranking = Sniff("caf\xE9 na\xEFve");
  const auto utf8 = std::find(ranking.encodings.begin(), ranking.encodings.end(), kCFStringEncodingUTF8);
  const auto latin = std::find(ranking.encodings.begin(), ranking.encodings.end(), kCFStringEncodingISOLatin1);
  EXPECT_EQ(ranking.errors[static_cast<std::size_t>(utf8 - ranking.encodings.begin())], 2u);
  EXPECT_EQ(ranking.errors[static_cast<std::size_t>(latin - ranking.encodings.begin())], 0u);
}

TEST(TextEncodingConversionTest, EmptyTextAndBadArguments) {
  EXPECT_EQ(Sniff("").encodings, Available()) << "nothing speaks for any";
  TECSnifferObjectRef sniffer = nullptr;
  const TextEncoding unknown = kCFStringEncodingMacRoman;
  EXPECT_EQ(TECCreateSniffer(&sniffer, &unknown, 1), kTextUnsupportedEncodingErr);
  EXPECT_EQ(sniffer, nullptr);
  EXPECT_EQ(TECCreateSniffer(&sniffer, nullptr, 1), paramErr);
  EXPECT_EQ(TECDisposeSniffer(nullptr), paramErr);
  EXPECT_EQ(TECCountAvailableSniffers(nullptr), paramErr);

  TextEncoding two[2] = {kCFStringEncodingUTF8, kCFStringEncodingKOI8_R};
  ASSERT_EQ(TECCreateSniffer(&sniffer, two, 2), noErr);
  ItemCount errors[2] = {77, 77};
  const std::uint8_t bytes[] = {0xFF};
  EXPECT_EQ(TECSniffTextEncoding(sniffer, bytes, 1, two, 2, errors, 1, nullptr, 0), noErr);
  EXPECT_EQ(errors[1], 77u) << "filled up to the capacity only";
  TextEncoding foreign = kCFStringEncodingBig5;
  EXPECT_EQ(TECSniffTextEncoding(sniffer, bytes, 1, &foreign, 1, nullptr, 0, nullptr, 0), kTextUnsupportedEncodingErr);
  EXPECT_EQ(TECSniffTextEncoding(nullptr, bytes, 1, two, 2, nullptr, 0, nullptr, 0), paramErr);
  TECDisposeSniffer(sniffer);
}

}  // namespace
