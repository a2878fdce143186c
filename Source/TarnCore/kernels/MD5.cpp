// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/MD5.h"

#include <bit>
#include <cstring>

namespace vorto::kernels {

namespace {

static_assert(std::endian::native == std::endian::little, "words are read as they lie in memory");

// Each step waits for the one before it, so what counts is how few operations stand between the newest word (b) and the
// step's result. The round functions are written for that: in the second, its two halves have no bit in common and are
// added one after the other, the half without b first.
template <int round>
std::uint32_t addRoundFunction(std::uint32_t sum, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
  if constexpr (round == 0) return sum + (((c ^ d) & b) ^ d);
  if constexpr (round == 1) return (sum + (c & ~d)) + (b & d);
  if constexpr (round == 2) return sum + ((c ^ d) ^ b);
  return sum + ((~d | b) ^ c);
}

// One step of RFC 1321; `addend` is the block's word plus the sine-derived constant.
template <int round, int shift>
void step(std::uint32_t& a, std::uint32_t b, std::uint32_t c, std::uint32_t d, std::uint32_t addend) {
  a = std::rotl(addRoundFunction<round>(a + addend, b, c, d), shift) + b;
}

void fastBlocks(std::uint32_t state[4], const unsigned char* blocks, std::size_t count) {
  std::uint32_t a = state[0];
  std::uint32_t b = state[1];
  std::uint32_t c = state[2];
  std::uint32_t d = state[3];
  for (std::size_t i = 0; i < count; ++i) {
    std::uint32_t words[16];
    std::memcpy(words, blocks + 64 * i, sizeof words);
    const std::uint32_t start[4] = {a, b, c, d};
    step<0, 7>(a, b, c, d, words[0] + 0xD76AA478u);
    step<0, 12>(d, a, b, c, words[1] + 0xE8C7B756u);
    step<0, 17>(c, d, a, b, words[2] + 0x242070DBu);
    step<0, 22>(b, c, d, a, words[3] + 0xC1BDCEEEu);
    step<0, 7>(a, b, c, d, words[4] + 0xF57C0FAFu);
    step<0, 12>(d, a, b, c, words[5] + 0x4787C62Au);
    step<0, 17>(c, d, a, b, words[6] + 0xA8304613u);
    step<0, 22>(b, c, d, a, words[7] + 0xFD469501u);
    step<0, 7>(a, b, c, d, words[8] + 0x698098D8u);
    step<0, 12>(d, a, b, c, words[9] + 0x8B44F7AFu);
    step<0, 17>(c, d, a, b, words[10] + 0xFFFF5BB1u);
    step<0, 22>(b, c, d, a, words[11] + 0x895CD7BEu);
    step<0, 7>(a, b, c, d, words[12] + 0x6B901122u);
    step<0, 12>(d, a, b, c, words[13] + 0xFD987193u);
    step<0, 17>(c, d, a, b, words[14] + 0xA679438Eu);
    step<0, 22>(b, c, d, a, words[15] + 0x49B40821u);
    step<1, 5>(a, b, c, d, words[1] + 0xF61E2562u);
    step<1, 9>(d, a, b, c, words[6] + 0xC040B340u);
    step<1, 14>(c, d, a, b, words[11] + 0x265E5A51u);
    step<1, 20>(b, c, d, a, words[0] + 0xE9B6C7AAu);
    step<1, 5>(a, b, c, d, words[5] + 0xD62F105Du);
    step<1, 9>(d, a, b, c, words[10] + 0x02441453u);
    step<1, 14>(c, d, a, b, words[15] + 0xD8A1E681u);
    step<1, 20>(b, c, d, a, words[4] + 0xE7D3FBC8u);
    step<1, 5>(a, b, c, d, words[9] + 0x21E1CDE6u);
    step<1, 9>(d, a, b, c, words[14] + 0xC33707D6u);
    step<1, 14>(c, d, a, b, words[3] + 0xF4D50D87u);
    step<1, 20>(b, c, d, a, words[8] + 0x455A14EDu);
    step<1, 5>(a, b, c, d, words[13] + 0xA9E3E905u);
    step<1, 9>(d, a, b, c, words[2] + 0xFCEFA3F8u);
    step<1, 14>(c, d, a, b, words[7] + 0x676F02D9u);
    step<1, 20>(b, c, d, a, words[12] + 0x8D2A4C8Au);
    step<2, 4>(a, b, c, d, words[5] + 0xFFFA3942u);
    step<2, 11>(d, a, b, c, words[8] + 0x8771F681u);
    step<2, 16>(c, d, a, b, words[11] + 0x6D9D6122u);
    step<2, 23>(b, c, d, a, words[14] + 0xFDE5380Cu);
    step<2, 4>(a, b, c, d, words[1] + 0xA4BEEA44u);
    step<2, 11>(d, a, b, c, words[4] + 0x4BDECFA9u);
    step<2, 16>(c, d, a, b, words[7] + 0xF6BB4B60u);
    step<2, 23>(b, c, d, a, words[10] + 0xBEBFBC70u);
    step<2, 4>(a, b, c, d, words[13] + 0x289B7EC6u);
    step<2, 11>(d, a, b, c, words[0] + 0xEAA127FAu);
    step<2, 16>(c, d, a, b, words[3] + 0xD4EF3085u);
    step<2, 23>(b, c, d, a, words[6] + 0x04881D05u);
    step<2, 4>(a, b, c, d, words[9] + 0xD9D4D039u);
    step<2, 11>(d, a, b, c, words[12] + 0xE6DB99E5u);
    step<2, 16>(c, d, a, b, words[15] + 0x1FA27CF8u);
    step<2, 23>(b, c, d, a, words[2] + 0xC4AC5665u);
    step<3, 6>(a, b, c, d, words[0] + 0xF4292244u);
    step<3, 10>(d, a, b, c, words[7] + 0x432AFF97u);
    step<3, 15>(c, d, a, b, words[14] + 0xAB9423A7u);
    step<3, 21>(b, c, d, a, words[5] + 0xFC93A039u);
    step<3, 6>(a, b, c, d, words[12] + 0x655B59C3u);
    step<3, 10>(d, a, b, c, words[3] + 0x8F0CCC92u);
    step<3, 15>(c, d, a, b, words[10] + 0xFFEFF47Du);
    step<3, 21>(b, c, d, a, words[1] + 0x85845DD1u);
    step<3, 6>(a, b, c, d, words[8] + 0x6FA87E4Fu);
    step<3, 10>(d, a, b, c, words[15] + 0xFE2CE6E0u);
    step<3, 15>(c, d, a, b, words[6] + 0xA3014314u);
    step<3, 21>(b, c, d, a, words[13] + 0x4E0811A1u);
    step<3, 6>(a, b, c, d, words[4] + 0xF7537E82u);
    step<3, 10>(d, a, b, c, words[11] + 0xBD3AF235u);
    step<3, 15>(c, d, a, b, words[2] + 0x2AD7D2BBu);
    step<3, 21>(b, c, d, a, words[9] + 0xEB86D391u);
    a += start[0];
    b += start[1];
    c += start[2];
    d += start[3];
  }
  state[0] = a;
  state[1] = b;
  state[2] = c;
  state[3] = d;
}

}  // namespace

void md5Blocks(std::uint32_t state[4], const unsigned char* blocks, std::size_t count) {
  fastBlocks(state, blocks, count);
}

}  // namespace vorto::kernels
