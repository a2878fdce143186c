// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCHash128.h"
#include "TarnCore/TCString.h"
#include "TarnCore/kernels/MD5.h"
#include "Tests/TarnCore/PixelOracle.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

using oracle::Bytes;
using oracle::randomBytes;

VortoHash128 hashOf(const Bytes& bytes) {
  return VortoHash128(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

VortoHash128 initialState() {
  VortoHash128 state;
  const std::uint32_t words[4] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
  std::memcpy(state.words, words, sizeof words);
  return state;
}

std::string textOf(const VortoHash128& hash) {
  char* text = hash.getString().createCStr();
  const std::string result(text);
  std::free(text);
  return result;
}

// A whole MD5 (padding and length added by hand) as the customary text.
std::string md5(std::string message) {
  const std::uint64_t bits = message.size() * 8;
  message += '\x80';
  while (message.size() % 64 != 56) message += '\0';
  for (int i = 0; i < 8; ++i) message += static_cast<char>(bits >> (8 * i));
  VortoHash128 state = initialState();
  for (std::size_t at = 0; at < message.size(); at += 64) {
    std::uint32_t block[16];
    std::memcpy(block, message.data() + at, sizeof block);
    state.transform(block);
  }
  std::string text;
  for (const std::uint32_t word : state.words) {
    for (int i = 0; i < 4; ++i) {
      char digits[3];
      std::snprintf(digits, sizeof digits, "%02x", word >> (8 * i) & 0xFF);
      text += digits;
    }
  }
  return text;
}

}  // namespace

TEST(Hash128, TheTransformIsThatOfTheStandard) {
  EXPECT_EQ(md5(""), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(md5("abc"), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(md5("12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
            "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(Hash128, FastFormEqualsTheDefinitionAtEveryAlignment) {
  const Bytes bytes = randomBytes(64 * 40 + 16, 1);
  for (std::size_t offset = 0; offset < 16; ++offset) {
    for (std::size_t count = 0; count <= 40; ++count) {
      VortoHash128 fast = initialState();
      VortoHash128 plain = initialState();
      vorto::kernels::md5Blocks(fast.words, bytes.data() + offset, count);
      vorto::kernels::md5BlocksScalar(plain.words, bytes.data() + offset, count);
      ASSERT_EQ(fast, plain) << offset << ", " << count;
    }
  }
}

TEST(Hash128, EachCallPadsItsOwnTailAndAddsNoLength) {
  EXPECT_EQ(VortoHash128(nullptr, 0), VortoHash128());
  EXPECT_EQ(textOf(VortoHash128()), std::string(32, '0'));
  for (const std::size_t length : {1, 2, 55, 56, 63, 64, 65, 127, 128, 1000}) {
    const Bytes bytes = randomBytes(length, 2);
    Bytes padded = bytes;
    if (length % 64 != 0) padded.push_back(0x80);
    while (padded.size() % 64 != 0) padded.push_back(0);
    VortoHash128 expected = initialState();
    vorto::kernels::md5BlocksScalar(expected.words, padded.data(), padded.size() / 64);
    EXPECT_EQ(hashOf(bytes), expected) << length;
  }
  VortoHash128 inPieces;
  const Bytes bytes = randomBytes(100, 3);
  inPieces.addData(bytes.data(), 10);
  inPieces.addData(bytes.data() + 10, 90);
  EXPECT_NE(inPieces, hashOf(bytes));
  VortoHash128 aligned;
  aligned.addData(bytes.data(), 64);
  aligned.addData(bytes.data() + 64, 36);
  EXPECT_EQ(aligned, hashOf(bytes));
}

TEST(Hash128, AddingAFingerprintTransformsItsWords) {
  const VortoHash128 other = hashOf(randomBytes(77, 4));
  VortoHash128 sum;
  sum += other;
  VortoHash128 expected = initialState();
  std::uint32_t block[16] = {other.words[0], other.words[1], other.words[2], other.words[3], 0x80000000};
  expected.transform(block);
  EXPECT_EQ(sum, expected);
}

TEST(Hash128, TextFormRoundTripsAndRefusesAnythingElse) {
  const VortoHash128 hash = hashOf(randomBytes(500, 5));
  const std::string text = textOf(hash);
  EXPECT_EQ(VortoHash128(hash.getString()), hash);
  char words[33];
  std::snprintf(words, sizeof words, "%08x%08x%08x%08x", hash.words[0], hash.words[1], hash.words[2], hash.words[3]);
  EXPECT_EQ(text, words);
  EXPECT_EQ(VortoHash128(VortoString((text + "trailing").c_str())), hash);
  std::string upper = text;
  for (char& c : upper) c = c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c;
  EXPECT_EQ(VortoHash128(VortoString(upper.c_str())), hash);
  EXPECT_EQ(VortoHash128(VortoString(text.substr(0, 31).c_str())), VortoHash128());
  EXPECT_EQ(VortoHash128(VortoString(("g" + text.substr(1)).c_str())), VortoHash128());
  EXPECT_EQ(VortoHash128(VortoString()), VortoHash128());
}
