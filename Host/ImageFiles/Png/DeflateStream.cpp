// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Png/DeflateStream.h"

#include <libdeflate.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace host {
namespace {

constexpr std::size_t kHistory = 32768;  // how far back distances reach
constexpr std::size_t kBlock = 65024;
constexpr std::size_t kLongestMatch = 258;
constexpr std::size_t kMostCompared = 16;
constexpr unsigned kWorthwhileBits = 20;  // what a match saves at least, before it costs something itself
constexpr std::size_t kLongMatch = 32;    // none longer is looked for one byte on
// The more places there are where nothing was found, the longer the steps to the next; what is found must pay for them.
constexpr std::size_t kMissesForAStep = 64;
constexpr std::size_t kMostMisses = 1024;
constexpr std::size_t kMissesPerTwoBits = 5;

std::uint64_t wordAt(const std::uint8_t* bytes) {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

std::size_t matchLength(const std::uint8_t* a, const std::uint8_t* b, std::size_t most) {
  std::size_t length = 0;
  for (; length + 8 <= most; length += 8) {
    std::uint64_t x;
    std::uint64_t y;
    std::memcpy(&x, a + length, 8);
    std::memcpy(&y, b + length, 8);
    if (x != y) {
      const int bits = std::endian::native == std::endian::little ? std::countr_zero(x ^ y) : std::countl_zero(x ^ y);
      return length + static_cast<std::size_t>(bits) / 8;
    }
  }
  while (length < most && a[length] == b[length]) ++length;
  return length;
}

// What a byte of the block costs when it stands as it is, in sixteenths of a bit: less the more there are of it.
class LiteralCosts {
 public:
  explicit LiteralCosts(std::span<const std::uint8_t> block) {
    std::array<std::array<std::uint32_t, 256>, 2> counts{};  // two, since equal neighbors would wait for each other
    for (std::size_t i = 0; i + 1 < block.size(); i += 2) {
      ++counts[0][block[i]];
      ++counts[1][block[i + 1]];
    }
    const double all = static_cast<double>(block.size());
    for (std::size_t i = 0; i < 256; ++i) {
      const double share = (counts[0][i] + counts[1][i] + 1) / all;
      const double bits = std::clamp(-std::log2(share), 1.0, 14.0);
      average_ += share * bits;
      costs_[i] = static_cast<std::uint16_t>(16 * bits);
    }
  }
  double average() const { return average_; }  // in bits
  std::uint32_t of(const std::uint8_t* bytes, std::size_t size) const {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < size; ++i) sum += costs_[bytes[i]];
    return sum;
  }

 private:
  std::array<std::uint16_t, 256> costs_;
  double average_ = 0;
};

// The bits behind a match's symbols, in sixteenths too.
std::uint32_t matchCost(std::size_t length, std::size_t distance) {
  const auto extraBits = [](std::size_t number, std::size_t parts) {
    const auto width = static_cast<std::size_t>(std::bit_width(number));
    return width > parts + 1 ? width - parts - 1 : 0;
  };
  return static_cast<std::uint32_t>(16 * (extraBits(length - 3, 2) + extraBits(distance - 1, 1)));
}

struct Match {
  std::uint16_t length = 0;
  std::uint16_t distance = 0;
  std::uint32_t saved = 0;  // against the bytes as they stand; 0: it is none
};

}  // namespace

DeflateStream::DeflateStream(Method method) : method_(method), latest_(std::size_t{1} << kHashBits) {
  start_ = 2 * kHistory;  // so that nothing is near the places that no bytes are known for
  window_.reserve(kHistory + kBlock);
  out_.reserve(2);
  out_.put(0x0178, 16);
}

void DeflateStream::append(std::span<const std::uint8_t> bytes) {
  checksum_ = libdeflate_adler32(checksum_, bytes.data(), bytes.size());
  while (!bytes.empty()) {
    if (window_.size() - history_ == kBlock) writeBlock(false);
    const auto part = bytes.first(std::min(bytes.size(), kBlock - (window_.size() - history_)));
    window_.insert(window_.end(), part.begin(), part.end());
    bytes = bytes.subspan(part.size());
  }
}

void DeflateStream::finish() {
  writeBlock(true);
  out_.reserve(5);
  out_.alignToByte();
  out_.put(__builtin_bswap32(checksum_), 32);
}

void DeflateStream::writeBlock(bool isLast) {
  const auto block = std::span<const std::uint8_t>(window_).subspan(history_);
  if (method_ == Method::Stored) {
    writeStoredBlock(block, isLast, &out_);
  } else {
    findSteps(block);
    writeDeflateBlock(block, steps_, isLast, &out_);
  }
  const std::size_t passed = window_.size() - std::min(window_.size(), kHistory);
  window_.erase(window_.begin(), window_.begin() + static_cast<std::ptrdiff_t>(passed));
  history_ = window_.size();
  start_ += static_cast<std::uint32_t>(passed);
}

// Looks for what stood before in the window of a stream.
class DeflateStream::Matcher {
 public:
  Matcher(DeflateStream& stream, std::span<const std::uint8_t> block, const LiteralCosts& costs)
      : window_(stream.window_.data()),
        start_(stream.start_),
        latest_(stream.latest_),
        end_(block.data() + block.size()),
        costs_(costs),
        symbolCost_(stream.matchSymbolBits_),
        least_(static_cast<std::size_t>(std::clamp(kWorthwhileBits / costs.average(), 4.0, 1.0 * kMostCompared))),
        hashed_(std::min<std::size_t>(least_, 8)),
        unhashedBits_(64 - 8 * hashed_) {}

  // Also remembers the place.
  Match find(const std::uint8_t* at) {
    const std::uint32_t place = placeOf(at);
    Match best;
    auto& places = latest_[hashOf(at)];
    for (const std::uint32_t earlier : places) consider(at, place - earlier, &best);
    if (places[0] != place) places = {place, places[0]};
    return best;
  }

  void remember(const std::uint8_t* from, const std::uint8_t* to) {
    for (to = std::min(to, end_ - kMostCompared); from < to; ++from) {
      auto& places = latest_[hashOf(from)];
      places = {placeOf(from), places[0]};
    }
  }

 private:
  std::uint32_t placeOf(const std::uint8_t* at) const { return start_ + static_cast<std::uint32_t>(at - window_); }
  std::size_t hashOf(const std::uint8_t* at) const {
    return (wordAt(at) << unhashedBits_) * 0x9E3779B97F4A7C15u >> (64 - kHashBits);
  }
  // The first bytes, and the last of those that are least.
  bool areSame(const std::uint8_t* x, const std::uint8_t* y) const {
    const std::size_t rest = least_ - hashed_;
    return (wordAt(x) ^ wordAt(y)) << unhashedBits_ == 0 && (wordAt(x + rest) ^ wordAt(y + rest)) << unhashedBits_ == 0;
  }
  void consider(const std::uint8_t* at, std::uint32_t distance, Match* best) const {
    if (distance - 1 >= kHistory || distance > static_cast<std::size_t>(at - window_)) return;
    if (!areSame(at - distance, at)) return;
    const std::size_t length =
        matchLength(at - distance, at, std::min<std::size_t>(kLongestMatch, static_cast<std::size_t>(end_ - at)));
    const std::uint32_t without = costs_.of(at, length);
    const std::uint32_t cost = 16 * symbolCost_ + matchCost(length, distance);
    if (without > cost + best->saved) {
      *best = {static_cast<std::uint16_t>(length), static_cast<std::uint16_t>(distance), without - cost};
    }
  }

  const std::uint8_t* window_;
  std::uint32_t start_;
  std::vector<std::array<std::uint32_t, 2>>& latest_;
  const std::uint8_t* end_;
  const LiteralCosts& costs_;
  std::uint32_t symbolCost_;
  std::size_t least_;  // as many bytes must be the same as make a match worth its while
  std::size_t hashed_;
  std::size_t unhashedBits_;
};

void DeflateStream::findSteps(std::span<const std::uint8_t> block) {
  steps_.clear();
  const LiteralCosts costs(block);
  Matcher matcher(*this, block, costs);
  const std::uint8_t* const end = block.data() + block.size();
  const std::uint8_t* const last = block.data() + (block.size() - std::min(block.size(), kMostCompared));
  const std::uint8_t* literals = block.data();
  std::size_t misses = 0;
  for (const std::uint8_t* at = block.data(); at < last;) {
    Match match = matcher.find(at);
    if (match.saved == 0) {
      misses = std::min(misses + 1, kMostMisses);
      at += 1 + misses / kMissesForAStep;
      continue;
    }
    misses -= std::min<std::size_t>(misses, match.saved * kMissesPerTwoBits / 32);
    const std::uint8_t* from = at;
    while (from + 1 < last && match.length < kLongMatch) {
      const Match next = matcher.find(from + 1);
      if (next.saved <= match.saved) break;
      match = next;
      ++from;
    }
    steps_.push_back({static_cast<std::uint32_t>(from - literals), match.length, match.distance});
    literals = from + match.length;
    matcher.remember(from + 2, literals);
    at = literals;
  }
  if (literals < end) steps_.push_back({static_cast<std::uint32_t>(end - literals), 0, 0});
  estimateMatches();
}

// What a match's two symbols may cost in the next block: the less, the more there are of them.
void DeflateStream::estimateMatches() {
  double literals = 1;
  double matches = 1;
  for (const DeflateStep& step : steps_) {
    literals += step.literals;
    matches += step.length > 0;
  }
  matchSymbolBits_ = static_cast<std::uint32_t>(std::clamp(5 - std::log2(matches / (literals + matches)), 5.0, 10.0));
}

}  // namespace host
