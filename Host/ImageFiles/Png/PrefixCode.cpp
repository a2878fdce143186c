// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Png/PrefixCode.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace host {
namespace {

constexpr std::size_t kMaximumSymbols = 288;
constexpr unsigned kMaximumDepth = kMaximumSymbols;
constexpr unsigned kMaximumLength = 15;

// How many leaves lie at each depth of Huffman's tree over ascending counts. Inner nodes come out in ascending order
// too, so the two smallest are always the next leaf or the next inner node.
void countDepths(std::span<const std::uint64_t> counts, std::span<std::uint32_t, kMaximumDepth> depths) {
  std::array<std::uint64_t, kMaximumSymbols> inner;
  std::array<std::uint16_t, kMaximumSymbols> parentOfInner{};
  std::array<std::uint16_t, kMaximumSymbols> parentOfLeaf{};
  std::size_t leaf = 0;
  std::size_t node = 0;
  const std::size_t total = counts.size() - 1;
  for (std::size_t made = 0; made < total; ++made) {
    inner[made] = 0;
    for (int child = 0; child < 2; ++child) {
      const bool isLeaf = leaf < counts.size() && (node >= made || counts[leaf] <= inner[node]);
      inner[made] += isLeaf ? counts[leaf] : inner[node];
      (isLeaf ? parentOfLeaf[leaf++] : parentOfInner[node++]) = static_cast<std::uint16_t>(made);
    }
  }
  std::array<std::uint16_t, kMaximumSymbols> depthOfInner{};
  for (std::size_t i = total - 1; i-- > 0;) {
    depthOfInner[i] = static_cast<std::uint16_t>(depthOfInner[parentOfInner[i]] + 1);
  }
  for (std::size_t i = 0; i < counts.size(); ++i) ++depths[depthOfInner[parentOfLeaf[i]] + 1u];
}

// Lifts what lies too deep, and makes room for it: a leaf higher up becomes two, one level deeper.
void limitDepths(unsigned longest, std::span<std::uint32_t, kMaximumDepth> depths) {
  for (unsigned depth = longest + 1; depth < kMaximumDepth; ++depth) {
    depths[longest] += depths[depth];
    depths[depth] = 0;
  }
  std::uint64_t taken = 0;  // of the 2^longest codes
  for (unsigned depth = 1; depth <= longest; ++depth) taken += std::uint64_t{depths[depth]} << (longest - depth);
  for (; taken > std::uint64_t{1} << longest; --taken) {
    unsigned depth = longest - 1;
    while (depths[depth] == 0) --depth;
    --depths[longest];
    --depths[depth];
    depths[depth + 1] += 2;
  }
}

}  // namespace

void findCodeLengths(std::span<const std::uint32_t> counts, unsigned longest, std::span<std::uint8_t> lengths) {
  // Count and symbol in one number sort by both.
  std::array<std::uint64_t, kMaximumSymbols> sorted;
  std::size_t used = 0;
  for (std::size_t symbol = 0; symbol < counts.size(); ++symbol) {
    lengths[symbol] = 0;
    if (counts[symbol] > 0) sorted[used++] = std::uint64_t{counts[symbol]} << 16 | symbol;
  }
  std::sort(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(used));
  std::array<std::uint16_t, kMaximumSymbols> symbols;
  for (std::size_t i = 0; i < used; ++i) {
    symbols[i] = static_cast<std::uint16_t>(sorted[i] & 0xFFFF);
    sorted[i] >>= 16;
  }
  std::array<std::uint32_t, kMaximumDepth> depths{};
  countDepths(std::span(sorted).first(used), depths);
  limitDepths(longest, depths);
  std::size_t next = 0;
  for (unsigned depth = longest; depth > 0; --depth) {
    for (std::uint32_t i = 0; i < depths[depth]; ++i) lengths[symbols[next++]] = static_cast<std::uint8_t>(depth);
  }
}

void findCodes(std::span<const std::uint8_t> lengths, std::span<std::uint16_t> codes) {
  std::array<std::uint32_t, kMaximumLength + 1> used{};
  for (const std::uint8_t length : lengths) ++used[length];
  std::array<std::uint32_t, kMaximumLength + 1> next{};  // the next code of each length
  for (unsigned length = 2; length <= kMaximumLength; ++length)
    next[length] = (next[length - 1] + used[length - 1]) << 1;
  for (std::size_t symbol = 0; symbol < lengths.size(); ++symbol) {
    if (lengths[symbol] == 0) continue;
    std::uint32_t value = next[lengths[symbol]]++;
    std::uint32_t reversed = 0;
    for (unsigned bit = 0; bit < lengths[symbol]; ++bit, value >>= 1) reversed = reversed << 1 | (value & 1);
    codes[symbol] = static_cast<std::uint16_t>(reversed);
  }
}

}  // namespace host
