// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/MD5.h"

#include <bit>
#include <cmath>
#include <cstddef>

namespace vorto::kernels {

namespace {

constexpr int kShifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

// T[i] of the RFC: the integer part of 4294967296 x |sin(i)|, i from 1, in radians.
std::uint32_t sineConstant(int step) {
  return static_cast<std::uint32_t>(std::floor(4294967296.0 * std::fabs(std::sin(static_cast<double>(step + 1)))));
}

std::uint32_t wordAt(const unsigned char* bytes) {
  return std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
         std::uint32_t{bytes[3]} << 24;
}

std::uint32_t roundFunction(int round, std::uint32_t x, std::uint32_t y, std::uint32_t z) {
  switch (round) {
    case 0:
      return (x & y) | (~x & z);
    case 1:
      return (x & z) | (y & ~z);
    case 2:
      return x ^ y ^ z;
    default:
      return y ^ (x | ~z);
  }
}

int wordIndex(int round, int step) {
  constexpr int factors[4] = {1, 5, 3, 7};
  constexpr int offsets[4] = {0, 1, 5, 0};
  return (factors[round] * step + offsets[round]) % 16;
}

void transformBlock(std::uint32_t state[4], const unsigned char* block) {
  std::uint32_t a = state[0];
  std::uint32_t b = state[1];
  std::uint32_t c = state[2];
  std::uint32_t d = state[3];
  for (int step = 0; step < 64; ++step) {
    const int round = step / 16;
    const std::uint32_t sum = a + roundFunction(round, b, c, d) +
                              wordAt(block + std::ptrdiff_t{4} * wordIndex(round, step)) + sineConstant(step);
    a = d;
    d = c;
    c = b;
    b += std::rotl(sum, kShifts[round][step % 4]);
  }
  state[0] += a;
  state[1] += b;
  state[2] += c;
  state[3] += d;
}

}  // namespace

void md5BlocksScalar(std::uint32_t state[4], const unsigned char* blocks, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) transformBlock(state, blocks + 64 * i);
}

}  // namespace vorto::kernels
