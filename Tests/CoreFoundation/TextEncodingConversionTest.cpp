// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/TextEncodingConversion.h"

#include "Tests/Support/Tables.h"

namespace {

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
