// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/HalfFloat.h"

#include <bit>

#if defined(__x86_64__)
#include <cpuid.h>
#include <immintrin.h>
#endif

namespace host {
namespace {

float toFloat(std::uint16_t half) {
  const std::uint32_t sign = (half & 0x8000u) << 16;
  const std::uint32_t magnitude = half & 0x7FFFu;
  if (magnitude >= 0x7C00) return std::bit_cast<float>(sign | 0x7F800000u | (magnitude & 0x3FFu) << 13);
  if (magnitude < 0x400) {
    const float tiny = static_cast<float>(magnitude) * 0x1p-24f;
    return std::bit_cast<float>(sign | std::bit_cast<std::uint32_t>(tiny));
  }
  return std::bit_cast<float>(sign | ((magnitude << 13) + (112u << 23)));
}

std::uint16_t toHalf(float value) {
  const auto bits = std::bit_cast<std::uint32_t>(value);
  const auto sign = static_cast<std::uint16_t>(bits >> 16 & 0x8000u);
  const std::uint32_t magnitude = bits & 0x7FFFFFFFu;
  if (magnitude > 0x7F800000u) {  // what is left of a NaN's bits, if only one to keep it a NaN
    const std::uint32_t left = magnitude >> 13 & 0x3FFu;
    return static_cast<std::uint16_t>(sign | 0x7C00u | (left == 0 ? 1u : left));
  }
  if (magnitude >= 0x477FF000u) return sign | 0x7C00u;
  if (magnitude < 0x38800000u) {  // in units of the smallest half: the addition rounds
    const float shifted = std::bit_cast<float>(magnitude) + 0.5f;
    return static_cast<std::uint16_t>(sign | (std::bit_cast<std::uint32_t>(shifted) - 0x3F000000u));
  }
  const std::uint32_t rounded = magnitude - (112u << 23) + 0xFFFu + (magnitude >> 13 & 1u);
  return static_cast<std::uint16_t>(sign | rounded >> 13);
}

#if defined(__x86_64__)
// The processor's own conversions change NaNs: groups with one are left to the functions above.
[[gnu::target("avx,f16c")]] std::size_t toFloatsByEight(const std::uint16_t* halves, std::size_t count, float* floats) {
  const __m128i largest = _mm_set1_epi16(0x7C00);
  const __m128i magnitude = _mm_set1_epi16(0x7FFF);
  std::size_t i = 0;
  for (; i + 8 <= count; i += 8) {
    const __m128i eight = _mm_loadu_si128(reinterpret_cast<const __m128i*>(halves + i));
    if (_mm_movemask_epi8(_mm_cmpgt_epi16(_mm_and_si128(eight, magnitude), largest)) == 0) [[likely]] {
      _mm256_storeu_ps(floats + i, _mm256_cvtph_ps(eight));
    } else {
      for (std::size_t k = i; k < i + 8; ++k) floats[k] = toFloat(halves[k]);
    }
  }
  return i;
}

[[gnu::target("avx,f16c")]] std::size_t toHalvesByEight(const float* floats, std::size_t count, std::uint16_t* halves) {
  std::size_t i = 0;
  for (; i + 8 <= count; i += 8) {
    const __m256 eight = _mm256_loadu_ps(floats + i);
    if (_mm256_movemask_ps(_mm256_cmp_ps(eight, eight, _CMP_UNORD_Q)) == 0) [[likely]] {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(halves + i), _mm256_cvtps_ph(eight, _MM_FROUND_TO_NEAREST_INT));
    } else {
      for (std::size_t k = i; k < i + 8; ++k) halves[k] = toHalf(floats[k]);
    }
  }
  return i;
}

bool hasConversions() {
  static const bool has = [] {
    unsigned registers[4]{};
    return __builtin_cpu_supports("avx") &&
           __get_cpuid(1, &registers[0], &registers[1], &registers[2], &registers[3]) != 0 &&
           (registers[2] & bit_F16C) != 0;
  }();
  return has;
}
#else
std::size_t toFloatsByEight(const std::uint16_t*, std::size_t, float*) {
  return 0;
}
std::size_t toHalvesByEight(const float*, std::size_t, std::uint16_t*) {
  return 0;
}
bool hasConversions() {
  return false;
}
#endif

}  // namespace

void halvesToFloats(const std::uint16_t* halves, std::size_t count, float* floats) {
  for (std::size_t i = hasConversions() ? toFloatsByEight(halves, count, floats) : 0; i < count; ++i) {
    floats[i] = toFloat(halves[i]);
  }
}

void floatsToHalves(const float* floats, std::size_t count, std::uint16_t* halves) {
  for (std::size_t i = hasConversions() ? toHalvesByEight(floats, count, halves) : 0; i < count; ++i) {
    halves[i] = toHalf(floats[i]);
  }
}

}  // namespace host
