// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Png/DeflateBlock.h"

#include "Host/ImageFiles/Png/PrefixCode.h"

#include <algorithm>
#include <array>

namespace host {
namespace {

constexpr std::size_t kLiteralSymbols = 286;
constexpr std::size_t kDistanceSymbols = 30;
constexpr std::size_t kLengthSymbols = 19;
constexpr unsigned kLongestCode = 15;
constexpr unsigned kLongestLengthCode = 7;
constexpr std::size_t kEndOfBlock = 256;

// The symbol of a length or a distance, and the bits behind it that tell it from others with the same symbol.
struct Coded {
  unsigned symbol = 0;
  unsigned extraBits = 0;
  unsigned extra = 0;
};

// Symbols for 2^parts numbers between two powers of 2, counted from 0.
constexpr Coded codedInParts(unsigned number, unsigned parts) {
  if (number < 2u << parts) return {number, 0, 0};
  const unsigned bits = static_cast<unsigned>(std::bit_width(number)) - 1;
  const unsigned extraBits = bits - parts;
  const unsigned inPart = (number >> extraBits) & ((1u << parts) - 1);
  return {((extraBits + 1) << parts) + inPart, extraBits, number & ((1u << extraBits) - 1)};
}
constexpr Coded codedLength(unsigned length) {
  Coded coded = length == 258 ? Coded{28, 0, 0} : codedInParts(length - 3, 2);
  coded.symbol += 257;
  return coded;
}
constexpr Coded codedDistance(unsigned distance) {
  return codedInParts(distance - 1, 1);
}

template <std::size_t symbols>
struct Code {
  std::array<std::uint32_t, symbols> counts{};
  std::array<std::uint8_t, symbols> lengths{};
  std::array<std::uint16_t, symbols> codes{};

  void make(unsigned longest) {
    // A code of fewer than two symbols is not one to all readers.
    for (std::size_t i = 0; i < 2 && usedSymbols() < 2; ++i) counts[i] += counts[i] == 0;
    findCodeLengths(counts, longest, lengths);
    findCodes(lengths, codes);
  }
  std::size_t usedSymbols() const {
    return symbols - static_cast<std::size_t>(std::count(counts.begin(), counts.end(), 0u));
  }
  std::size_t sizeAtLeast(std::size_t least) const {
    std::size_t size = symbols;
    while (size > least && lengths[size - 1] == 0) --size;
    return size;
  }
  std::uint64_t bits() const {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < symbols; ++i) sum += std::uint64_t{counts[i]} * lengths[i];
    return sum;
  }
  void put(unsigned symbol, BitWriter* out) const { out->put(codes[symbol], lengths[symbol]); }
};

// Of a code's lengths: one, or how often the last or 0 is repeated.
struct LengthStep {
  std::uint8_t symbol = 0;
  std::uint8_t extraBits = 0;
  std::uint8_t extra = 0;
};

std::vector<LengthStep> lengthSteps(std::span<const std::uint8_t> lengths) {
  std::vector<LengthStep> steps;
  for (std::size_t i = 0; i < lengths.size();) {
    const std::uint8_t length = lengths[i];
    std::size_t run = 1;
    while (i + run < lengths.size() && lengths[i + run] == length) ++run;
    i += run;
    if (length != 0) {
      steps.push_back({length, 0, 0});
      --run;
    }
    while (run > 0) {
      const std::size_t most = length == 0 ? 138 : 6;
      const std::size_t part = std::min(run, most);
      if (part < 3) {
        steps.insert(steps.end(), part, {length, 0, 0});
      } else if (length != 0) {
        steps.push_back({16, 2, static_cast<std::uint8_t>(part - 3)});
      } else if (part <= 10) {
        steps.push_back({17, 3, static_cast<std::uint8_t>(part - 3)});
      } else {
        steps.push_back({18, 7, static_cast<std::uint8_t>(part - 11)});
      }
      run -= part;
    }
  }
  return steps;
}

// A block with codes of its own.
class DynamicBlock {
 public:
  DynamicBlock(std::span<const std::uint8_t> bytes, std::span<const DeflateStep> steps) : bytes_(bytes), steps_(steps) {
    count();
    literals_.make(kLongestCode);
    distances_.make(kLongestCode);
    literalCount_ = literals_.sizeAtLeast(257);
    distanceCount_ = distances_.sizeAtLeast(1);
    Bytes lengths(literals_.lengths.begin(), literals_.lengths.begin() + static_cast<std::ptrdiff_t>(literalCount_));
    lengths.insert(lengths.end(), distances_.lengths.begin(),
                   distances_.lengths.begin() + static_cast<std::ptrdiff_t>(distanceCount_));
    lengthSteps_ = lengthSteps(lengths);
    for (const LengthStep& step : lengthSteps_) ++lengths_.counts[step.symbol];
    lengths_.make(kLongestLengthCode);
    while (lengthCount_ > 4 && lengths_.lengths[kLengthOrder[lengthCount_ - 1]] == 0) --lengthCount_;
  }

  std::uint64_t bits() const {
    std::uint64_t sum = 3 + 14 + 3 * lengthCount_ + lengths_.bits();
    for (const LengthStep& step : lengthSteps_) sum += step.extraBits;
    return sum + literals_.bits() + distances_.bits() + extraBits_;
  }

  void write(bool isLast, BitWriter* out) const {
    out->put(isLast ? 0b101 : 0b100, 3);
    out->put(literalCount_ - 257, 5);
    out->put(distanceCount_ - 1, 5);
    out->put(lengthCount_ - 4, 4);
    for (std::size_t i = 0; i < lengthCount_; ++i) out->put(lengths_.lengths[kLengthOrder[i]], 3);
    for (const LengthStep& step : lengthSteps_) {
      lengths_.put(step.symbol, out);
      out->put(step.extra, step.extraBits);
    }
    writeSteps(out);
    literals_.put(kEndOfBlock, out);
  }

 private:
  using Bytes = std::vector<std::uint8_t>;
  static constexpr std::array<std::uint8_t, kLengthSymbols> kLengthOrder{16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                                         11, 4,  12, 3, 13, 2, 14, 1, 15};

  void count() {
    const std::uint8_t* next = bytes_.data();
    for (const DeflateStep& step : steps_) {
      for (const std::uint8_t* end = next + step.literals; next < end; ++next) ++literals_.counts[*next];
      if (step.length == 0) continue;
      next += step.length;
      const Coded length = codedLength(step.length);
      const Coded distance = codedDistance(step.distance);
      ++literals_.counts[length.symbol];
      ++distances_.counts[distance.symbol];
      extraBits_ += length.extraBits + distance.extraBits;
    }
    ++literals_.counts[kEndOfBlock];
  }

  void writeSteps(BitWriter* out) const {
    const std::uint8_t* next = bytes_.data();
    for (const DeflateStep& step : steps_) {
      const std::uint8_t* const end = next + step.literals;
      for (; next + 3 <= end; next += 3) {  // three at a time
        const unsigned first = literals_.lengths[next[0]];
        const unsigned second = first + literals_.lengths[next[1]];
        const std::uint64_t codes = literals_.codes[next[0]] | std::uint64_t{literals_.codes[next[1]]} << first |
                                    std::uint64_t{literals_.codes[next[2]]} << second;
        out->put(codes, second + literals_.lengths[next[2]]);
      }
      for (; next < end; ++next) literals_.put(*next, out);
      if (step.length == 0) continue;
      next += step.length;
      const Coded length = codedLength(step.length);
      const Coded distance = codedDistance(step.distance);
      literals_.put(length.symbol, out);
      out->put(length.extra, length.extraBits);
      distances_.put(distance.symbol, out);
      out->put(distance.extra, distance.extraBits);
    }
  }

  std::span<const std::uint8_t> bytes_;
  std::span<const DeflateStep> steps_;
  Code<kLiteralSymbols> literals_;
  Code<kDistanceSymbols> distances_;
  Code<kLengthSymbols> lengths_;
  std::vector<LengthStep> lengthSteps_;
  std::size_t literalCount_ = 0;
  std::size_t distanceCount_ = 0;
  std::size_t lengthCount_ = kLengthSymbols;
  std::uint64_t extraBits_ = 0;
};

constexpr std::size_t kStoredOverhead = 5;  // bytes: the block's kind up to the next byte, its size, twice

}  // namespace

void writeStoredBlock(std::span<const std::uint8_t> bytes, bool isLast, BitWriter* out) {
  out->reserve(bytes.size() + kStoredOverhead + 1);
  out->put(isLast, 3);
  out->alignToByte();
  out->put(bytes.size(), 16);
  out->put(~bytes.size() & 0xFFFF, 16);
  out->putBytes(bytes);
}

void writeDeflateBlock(std::span<const std::uint8_t> bytes, std::span<const DeflateStep> steps, bool isLast,
                       BitWriter* out) {
  const DynamicBlock block(bytes, steps);
  if (block.bits() >= 8 * (bytes.size() + kStoredOverhead)) {
    writeStoredBlock(bytes, isLast, out);
    return;
  }
  out->reserve(bytes.size() + kStoredOverhead + 1);
  block.write(isLast, out);
}

}  // namespace host
