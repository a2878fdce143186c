// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace host {

// Writes bits, the first the lowest of a byte. Room for them is made beforehand.
class BitWriter {
 public:
  void reserve(std::size_t bytes) {
    if (bytes_.size() < size_ + bytes + sizeof pending_) bytes_.resize(size_ + bytes + sizeof pending_);
  }
  void put(std::uint64_t bits, unsigned count) {  // up to 56
    pending_ |= bits << used_;
    used_ += count;
    std::uint64_t word = pending_;
    if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
    std::memcpy(&bytes_[size_], &word, sizeof word);
    size_ += used_ / 8;
    pending_ >>= used_ & ~7u;
    used_ %= 8;
  }
  void alignToByte() { put(0, (8 - used_) % 8); }
  void putBytes(std::span<const std::uint8_t> bytes) {  // when aligned
    std::memcpy(&bytes_[size_], bytes.data(), bytes.size());
    size_ += bytes.size();
  }

  // The whole bytes so far.
  std::span<const std::uint8_t> written() const { return {bytes_.data(), size_}; }
  void clear() { size_ = 0; }

 private:
  std::vector<std::uint8_t> bytes_;
  std::size_t size_ = 0;
  std::uint64_t pending_ = 0;
  unsigned used_ = 0;  // bits of it, fewer than 8
};

}  // namespace host
