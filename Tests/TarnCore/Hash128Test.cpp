// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCHash128.h"
#include "TarnCore/TCString.h"
#include "TarnCore/kernels/MD5.h"
#include "Tests/TarnCore/PixelOracle.h"

namespace {

using oracle::Bytes;
using oracle::randomBytes;

VortoHash128 hashOf(const Bytes& bytes) {
  return VortoHash128(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

VortoHash128 stateOf(const std::array<std::uint32_t, 4>& words) {
  VortoHash128 state;
  std::copy(words.begin(), words.end(), state.words);
  return state;
}

const VortoHash128 initialState = stateOf({0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476});

std::string textOf(const VortoHash128& hash) {
  return std::unique_ptr<char, decltype(&std::free)>(hash.getString().createCStr(), &std::free).get();
}

}  // namespace

TEST(Hash128, TheTransformIsThatOfTheStandardInEitherFormAtEveryAlignment) {
  std::string message = "12345678901234567890123456789012345678901234567890123456789012345678901234567890\x80";
  message.resize(128);  // padded, with its length of 640 bits
  message[120] = '\x80';
  message[121] = '\x02';
  VortoHash128 state = initialState;
  for (const std::size_t at : {0, 64}) {
    std::uint32_t block[16];
    std::memcpy(block, &message[at], sizeof block);
    state.transform(block);
  }
  for (std::uint32_t& word : state.words) word = __builtin_bswap32(word);
  EXPECT_EQ(textOf(state), "57edf4a22be3c955ac49da2e2107b67a");
  const Bytes bytes = randomBytes(64 * 40 + 16, 1);
  for (std::size_t i = 0; i < 16 * 41; ++i) {
    VortoHash128 fast = initialState, plain = initialState;
    vorto::kernels::md5Blocks(fast.words, bytes.data() + i % 16, i / 16);
    vorto::kernels::md5BlocksScalar(plain.words, bytes.data() + i % 16, i / 16);
    ASSERT_EQ(fast, plain) << i;
  }
}

TEST(Hash128, EachCallPadsItsOwnTailAndAddsNoLength) {
  EXPECT_EQ(VortoHash128(nullptr, 0), VortoHash128());
  EXPECT_EQ(textOf(VortoHash128()), std::string(32, '0'));
  for (const std::size_t length : {1, 2, 55, 56, 63, 64, 65, 127, 128, 1000}) {
    const Bytes bytes = randomBytes(length, 2);
    Bytes padded = bytes;
    if (length % 64 != 0) padded.push_back(0x80);
    padded.resize((padded.size() + 63) / 64 * 64);
    VortoHash128 expected = initialState;
    vorto::kernels::md5BlocksScalar(expected.words, padded.data(), padded.size() / 64);
    EXPECT_EQ(hashOf(bytes), expected) << length;
  }
  const Bytes bytes = randomBytes(100, 3);
  for (const std::uint32_t first : {10u, 64u}) {
    VortoHash128 inPieces;
    inPieces.addData(bytes.data(), first);
    inPieces.addData(bytes.data() + first, 100 - first);
    EXPECT_EQ(inPieces == hashOf(bytes), first == 64);
  }
  // A fingerprint is added by a transform of its words.
  const VortoHash128 other = hashOf(bytes);
  VortoHash128 sum, expected = initialState;
  sum += other;
  const std::uint32_t block[16] = {other.words[0], other.words[1], other.words[2], other.words[3], 0x80000000};
  expected.transform(block);
  EXPECT_EQ(sum, expected);
}

TEST(Hash128, TextFormRoundTripsAndRefusesAnythingElse) {
  const VortoHash128 hash = stateOf({0x01234567, 0x89ABCDEF, 0xFEDCBA98, 0x0000000F});
  EXPECT_EQ(textOf(hash), "0123456789abcdeffedcba980000000f");
  EXPECT_EQ(VortoHash128(hash.getString()), hash);
  for (const char* same : {"0123456789ABCDEFFEDCBA980000000F", "0123456789abcdeffedcba980000000ftrailing"}) {
    EXPECT_EQ(VortoHash128(VortoString(same)), hash) << same;
  }
  for (const char* refused : {"0123456789abcdeffedcba980000000", "g123456789abcdeffedcba980000000f", ""}) {
    EXPECT_EQ(VortoHash128(VortoString(refused)), VortoHash128()) << refused;
  }
  EXPECT_EQ(VortoHash128(VortoString()), VortoHash128());
}
