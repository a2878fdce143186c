// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/kernels/Dispatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

// What the tests of kernels share: every instruction set, buffers with guard bytes on both sides, and values that an
// operation could get wrong.
namespace kerneltesting {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::size_t kGuard = 80;
inline constexpr std::uint8_t kGuardByte = 0xA5;

template <class Function>
void onEveryTarget(Function function) {
  for (const auto& target : vorto::kernels::simdTargets()) {
    SCOPED_TRACE(target.name);
    vorto::kernels::forceSimdTarget(target);
    function();
  }
  vorto::kernels::restoreSimdTarget();
}

template <std::size_t n>
void append(Bytes& bytes, const std::uint8_t (&more)[n]) {
  for (const auto byte : more) bytes.push_back(byte);
}

inline Bytes randomBytes(std::size_t count, unsigned seed) {
  std::mt19937 generator(seed);
  Bytes bytes(count);
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>(generator());
  return bytes;
}

// The bytes at an offset from alignment between guards.
class Guarded {
 public:
  Guarded(const Bytes& bytes, std::size_t offset) : all_(kGuard + offset, kGuardByte), begin_(kGuard + offset) {
    all_.reserve(begin_ + bytes.size() + kGuard);
    for (const auto byte : bytes) all_.push_back(byte);
    all_.resize(all_.size() + kGuard, kGuardByte);
  }
  std::uint8_t* data() { return all_.data() + begin_; }
  // Where the two differ first, guards included, from the first byte of data on; "" when they are equal.
  std::string difference(const Guarded& other) const {
    const auto [mine, others] = std::mismatch(all_.begin(), all_.end(), other.all_.begin());
    if (mine == all_.end()) return "";
    return "byte " + std::to_string(mine - all_.begin() - static_cast<std::ptrdiff_t>(begin_)) + ": " +
           std::to_string(*mine) + " instead of " + std::to_string(*others);
  }

 private:
  Bytes all_;
  std::size_t begin_;
};

// An operation in place of so many pixels, in its fast form and as it is defined.
template <class Fast, class Definition>
void compareInPlace(const Bytes& bytes, std::size_t offset, Fast fast, Definition definition) {
  Guarded a(bytes, offset);
  Guarded b(bytes, offset);
  fast(a.data());
  definition(b.data());
  ASSERT_EQ(a.difference(b), "") << bytes.size() << " bytes at offset " << offset;
}

// Every exponent and sign with telling mantissas: zeros, denormals, infinities and both kinds of NaN among them.
inline std::vector<std::uint32_t> tellingFloats() {
  std::vector<std::uint32_t> patterns;
  for (std::uint32_t exponent = 0; exponent < 512; ++exponent) {
    for (const std::uint32_t mantissa : {0u, 1u, 0x200000u, 0x400000u, 0x400001u, 0x555555u, 0x7FFFFFu}) {
      patterns.push_back(exponent << 23 | mantissa);
    }
  }
  return patterns;
}

}  // namespace kerneltesting
