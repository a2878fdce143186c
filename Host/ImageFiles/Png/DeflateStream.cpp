// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Png/DeflateStream.h"

#include <libdeflate.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace host {
namespace {

constexpr std::size_t kHistory = 32768;  // how far back distances reach
constexpr std::size_t kBlock = 49152;
constexpr std::size_t kLongestMatch = 258;
constexpr unsigned kWorthwhileBits = 14;  // what a match saves at least, before it costs something itself
constexpr std::size_t kMissesBeforeLongerSteps = 64;
constexpr std::size_t kLongestStep = 16;

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

// In sixteenths of a bit too: the two symbols, and the bits behind them.
std::uint32_t matchCost(std::size_t length, std::size_t distance) {
  const auto extraBits = [](std::size_t number, std::size_t parts) {
    const auto width = static_cast<std::size_t>(std::bit_width(number));
    return width > parts + 1 ? width - parts - 1 : 0;
  };
  return static_cast<std::uint32_t>(16 * (10 + extraBits(length - 3, 2) + extraBits(distance - 1, 1)));
}

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
    findSteps(block.data(), block.size());
    writeDeflateBlock(block, steps_, isLast, &out_);
  }
  const std::size_t passed = window_.size() - std::min(window_.size(), kHistory);
  window_.erase(window_.begin(), window_.begin() + static_cast<std::ptrdiff_t>(passed));
  history_ = window_.size();
  start_ += static_cast<std::uint32_t>(passed);
}

void DeflateStream::findSteps(const std::uint8_t* block, std::size_t size) {
  steps_.clear();
  const LiteralCosts costs({block, size});
  // As many bytes must be the same as make a match worth its while. They are looked at in the lower part of a word.
  const auto hashed = static_cast<unsigned>(std::clamp(kWorthwhileBits / costs.average(), 4.0, 8.0));
  const unsigned unhashedBits = 64 - 8 * hashed;
  const auto hashOf = [&](std::uint64_t word) {
    return (word << unhashedBits) * 0x9E3779B97F4A7C15u >> (64 - kHashBits);
  };
  const std::uint8_t* const end = block + size;
  const std::uint8_t* literals = block;
  std::size_t misses = 0;
  for (const std::uint8_t* at = block; at + 8 <= end;) {
    const std::uint32_t place = start_ + static_cast<std::uint32_t>(at - window_.data());
    std::uint32_t& latest = latest_[hashOf(wordAt(at))];
    const std::uint32_t distance = place - std::exchange(latest, place);
    std::size_t length = 0;
    if (distance - 1 < kHistory && distance <= static_cast<std::size_t>(at - window_.data()) &&
        (wordAt(at - distance) ^ wordAt(at)) << unhashedBits == 0) {
      const std::size_t most = std::min<std::size_t>(kLongestMatch, static_cast<std::size_t>(end - at));
      length = matchLength(at - distance, at, most);
      const std::uint32_t cost = matchCost(length, distance);
      const std::uint32_t without = costs.of(at, length);
      if (cost >= without) {
        length = 0;
      } else {
        misses = 0;
      }
    }
    if (length == 0) {
      at += std::min(kLongestStep, 1 + misses++ / kMissesBeforeLongerSteps);
      continue;
    }
    steps_.push_back({static_cast<std::uint32_t>(at - literals), static_cast<std::uint16_t>(length),
                      static_cast<std::uint16_t>(distance)});
    at += length;
    literals = at;
  }
  if (literals < end) steps_.push_back({static_cast<std::uint32_t>(end - literals), 0, 0});
}

}  // namespace host
