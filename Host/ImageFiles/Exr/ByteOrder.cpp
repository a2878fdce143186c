// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/ByteOrder.h"

#include <bit>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace host::exr {
namespace {

static_assert(std::endian::native == std::endian::little, "samples are used as they are stored");

constexpr unsigned kBias = 128;

#if defined(__SSE2__)
__m128i load(const void* from) {
  return _mm_loadu_si128(static_cast<const __m128i*>(from));
}
void store(void* to, __m128i bytes) {
  _mm_storeu_si128(static_cast<__m128i*>(to), bytes);
}

__m128i lastByteEverywhere(__m128i bytes) {
  const __m128i pairs = _mm_unpackhi_epi8(bytes, bytes);
  return _mm_unpackhi_epi64(_mm_shufflehi_epi16(pairs, 0xFF), _mm_shufflehi_epi16(pairs, 0xFF));
}

// Sums within sixteen bytes do not wait for those before: only the addition of the last one does.
std::size_t sumBySixteen(std::uint8_t* bytes, std::size_t count) {
  const __m128i bias = _mm_set1_epi8(static_cast<char>(kBias));
  __m128i before = bias;  // of the first byte it is not taken off
  std::size_t i = 0;
  for (; i + 16 <= count; i += 16) {
    __m128i sums = _mm_xor_si128(load(bytes + i), bias);
    sums = _mm_add_epi8(sums, _mm_slli_si128(sums, 1));
    sums = _mm_add_epi8(sums, _mm_slli_si128(sums, 2));
    sums = _mm_add_epi8(sums, _mm_slli_si128(sums, 4));
    sums = _mm_add_epi8(sums, _mm_slli_si128(sums, 8));
    store(bytes + i, _mm_add_epi8(sums, before));
    before = _mm_add_epi8(before, lastByteEverywhere(sums));
  }
  return i;
}

std::size_t mergeBySixteen(const std::uint8_t* even, const std::uint8_t* odd, std::size_t count,
                           std::uint16_t* samples) {
  std::size_t i = 0;
  for (; i + 16 <= count; i += 16) {
    store(samples + i, _mm_unpacklo_epi8(load(even + i), load(odd + i)));
    store(samples + i + 8, _mm_unpackhi_epi8(load(even + i), load(odd + i)));
  }
  return i;
}

std::size_t sortBySixteen(const std::uint16_t* samples, std::size_t count, std::uint8_t* even, std::uint8_t* odd) {
  const __m128i low = _mm_set1_epi16(0xFF);
  std::size_t i = 0;
  for (; i + 16 <= count; i += 16) {
    const __m128i first = load(samples + i);
    const __m128i second = load(samples + i + 8);
    store(even + i, _mm_packus_epi16(_mm_and_si128(first, low), _mm_and_si128(second, low)));
    store(odd + i, _mm_packus_epi16(_mm_srli_epi16(first, 8), _mm_srli_epi16(second, 8)));
  }
  return i;
}

// From the end, so that what comes before is still there. Returns how many bytes at the start are left.
std::size_t subtractBySixteen(std::uint8_t* bytes, std::size_t count) {
  const __m128i bias = _mm_set1_epi8(static_cast<char>(kBias));
  std::size_t end = count;
  for (; end > 16; end -= 16) {
    const __m128i difference = _mm_sub_epi8(load(bytes + end - 16), load(bytes + end - 17));
    store(bytes + end - 16, _mm_xor_si128(difference, bias));
  }
  return end;
}
#else
std::size_t sumBySixteen(std::uint8_t*, std::size_t) {
  return 0;
}
std::size_t mergeBySixteen(const std::uint8_t*, const std::uint8_t*, std::size_t, std::uint16_t*) {
  return 0;
}
std::size_t sortBySixteen(const std::uint16_t*, std::size_t, std::uint8_t*, std::uint8_t*) {
  return 0;
}
std::size_t subtractBySixteen(std::uint8_t*, std::size_t count) {
  return count;
}
#endif

}  // namespace

void sumDifferences(std::uint8_t* bytes, std::size_t count) {
  for (std::size_t i = sumBySixteen(bytes, count); i < count; ++i) {
    if (i > 0) bytes[i] = static_cast<std::uint8_t>(bytes[i] + bytes[i - 1] - kBias);
  }
}

void mergeBytes(const std::uint8_t* even, const std::uint8_t* odd, std::size_t count, std::uint16_t* samples) {
  for (std::size_t i = mergeBySixteen(even, odd, count, samples); i < count; ++i) {
    samples[i] = static_cast<std::uint16_t>(even[i] | odd[i] << 8);
  }
}

void sortAndSubtract(const std::uint16_t* samples, std::size_t count, std::uint8_t* bytes) {
  std::uint8_t* const odd = bytes + count;
  for (std::size_t i = sortBySixteen(samples, count, bytes, odd); i < count; ++i) {
    bytes[i] = static_cast<std::uint8_t>(samples[i]);
    odd[i] = static_cast<std::uint8_t>(samples[i] >> 8);
  }
  for (std::size_t i = subtractBySixteen(bytes, 2 * count); i > 1; --i) {
    bytes[i - 1] = static_cast<std::uint8_t>(bytes[i - 1] - bytes[i - 2] + kBias);
  }
}

}  // namespace host::exr
