// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// Sixteen bytes that are computed with at once, modulo 256: what PNG's filters are made of. Every operation has one
// form for SSE2 and one in plain loops.
namespace host {

#if defined(__SSE2__)

struct ByteLanes {
  __m128i v = _mm_setzero_si128();
};

template <std::size_t size>  // 1, 2, 4 or 8
std::uint64_t wordAt(const std::uint8_t* bytes) {
  std::conditional_t<
      size == 1, std::uint8_t,
      std::conditional_t<size == 2, std::uint16_t, std::conditional_t<size == 4, std::uint32_t, std::uint64_t>>>
      word;
  std::memcpy(&word, bytes, size);
  return word;
}

inline ByteLanes operator+(ByteLanes a, ByteLanes b) {
  return {_mm_add_epi8(a.v, b.v)};
}
inline ByteLanes operator-(ByteLanes a, ByteLanes b) {
  return {_mm_sub_epi8(a.v, b.v)};
}

// Half of a + b, rounded down.
inline ByteLanes averageOf(ByteLanes a, ByteLanes b) {
  const __m128i roundedUp = _mm_avg_epu8(a.v, b.v);
  return {_mm_sub_epi8(roundedUp, _mm_and_si128(_mm_xor_si128(a.v, b.v), _mm_set1_epi8(1)))};
}

// The one of a (left), b (above), c (above left) that is nearest to a + b - c; in doubt the earlier. The distances are
// |b - c|, |a - c|, and their sum or difference, as c lies beside or between the two.
inline ByteLanes paethOf(ByteLanes a, ByteLanes b, ByteLanes c) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i bOverC = _mm_subs_epu8(b.v, c.v);
  const __m128i cOverB = _mm_subs_epu8(c.v, b.v);
  const __m128i aOverC = _mm_subs_epu8(a.v, c.v);
  const __m128i cOverA = _mm_subs_epu8(c.v, a.v);
  const __m128i toA = _mm_or_si128(bOverC, cOverB);
  const __m128i toB = _mm_or_si128(aOverC, cOverA);
  const __m128i isBeside = _mm_cmpeq_epi8(_mm_cmpeq_epi8(bOverC, zero), _mm_cmpeq_epi8(aOverC, zero));
  const __m128i difference = _mm_or_si128(_mm_subs_epu8(toA, toB), _mm_subs_epu8(toB, toA));
  const __m128i toC = _mm_or_si128(isBeside, difference);  // beside: both others are nearer, or as near
  const __m128i nearest = _mm_min_epu8(toC, _mm_min_epu8(toA, toB));
  const __m128i isA = _mm_cmpeq_epi8(nearest, toA);
  const __m128i isB = _mm_cmpeq_epi8(nearest, toB);
  const __m128i bOrC = _mm_or_si128(_mm_and_si128(isB, b.v), _mm_andnot_si128(isB, c.v));
  return {_mm_or_si128(_mm_and_si128(isA, a.v), _mm_andnot_si128(isA, bOrC))};
}

// The sum of how far each byte, as a signed number, is from 0.
inline std::uint64_t sumOfMagnitudes(ByteLanes a) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i sums = _mm_sad_epu8(_mm_min_epu8(a.v, _mm_sub_epi8(zero, a.v)), zero);
  return static_cast<std::uint64_t>(_mm_cvtsi128_si32(sums)) +
         static_cast<std::uint64_t>(_mm_cvtsi128_si32(_mm_srli_si128(sums, 8)));
}

// The first bytes alone, 1 to 8; the others are 0. Whole words are moved: parts of lanes in memory are slow to read
// back.
template <std::size_t size>
ByteLanes loadPixel(const std::uint8_t* bytes) {
  constexpr std::size_t kWord = size >= 8 ? 8 : size >= 4 ? 4 : size >= 2 ? 2 : 1;
  std::uint64_t pixel = wordAt<kWord>(bytes);
  if constexpr (size > kWord) pixel |= wordAt<size - kWord>(bytes + kWord) << (8 * kWord);
  return {_mm_cvtsi64_si128(static_cast<long long>(pixel))};
}
template <std::size_t size>
void storePixel(ByteLanes lanes, std::uint8_t* bytes) {
  const auto pixel = static_cast<std::uint64_t>(_mm_cvtsi128_si64(lanes.v));
  std::memcpy(bytes, &pixel, size);
}

#else

struct ByteLanes {
  std::array<std::uint8_t, 16> v{};
};
template <class Operation>
ByteLanes eachOf(ByteLanes a, ByteLanes b, Operation operation) {
  for (std::size_t i = 0; i < 16; ++i) a.v[i] = static_cast<std::uint8_t>(operation(a.v[i], b.v[i]));
  return a;
}
inline ByteLanes operator+(ByteLanes a, ByteLanes b) {
  return eachOf(a, b, [](int x, int y) { return x + y; });
}
inline ByteLanes operator-(ByteLanes a, ByteLanes b) {
  return eachOf(a, b, [](int x, int y) { return x - y; });
}
inline ByteLanes averageOf(ByteLanes a, ByteLanes b) {
  return eachOf(a, b, [](int x, int y) { return (x + y) / 2; });
}
inline ByteLanes paethOf(ByteLanes a, ByteLanes b, ByteLanes c) {
  const auto magnitude = [](int x) { return x < 0 ? -x : x; };
  for (std::size_t i = 0; i < 16; ++i) {
    const int toA = magnitude(b.v[i] - c.v[i]);
    const int toB = magnitude(a.v[i] - c.v[i]);
    const int toC = magnitude(a.v[i] + b.v[i] - 2 * c.v[i]);
    if (toA > toB || toA > toC) a.v[i] = toB <= toC ? b.v[i] : c.v[i];
  }
  return a;
}
inline std::uint64_t sumOfMagnitudes(ByteLanes a) {
  std::uint64_t sum = 0;
  for (const std::uint8_t byte : a.v) sum += byte < 128 ? byte : 256u - byte;
  return sum;
}
template <std::size_t size>
ByteLanes loadPixel(const std::uint8_t* bytes) {
  ByteLanes lanes;
  std::memcpy(lanes.v.data(), bytes, size);
  return lanes;
}
template <std::size_t size>
void storePixel(ByteLanes lanes, std::uint8_t* bytes) {
  std::memcpy(bytes, lanes.v.data(), size);
}

#endif

inline ByteLanes loadLanes(const std::uint8_t* bytes) {
  ByteLanes lanes;
  std::memcpy(&lanes.v, bytes, sizeof lanes.v);
  return lanes;
}
inline void storeLanes(ByteLanes lanes, std::uint8_t* bytes) {
  std::memcpy(bytes, &lanes.v, sizeof lanes.v);
}

}  // namespace host
