// SPDX-License-Identifier: BSD-3-Clause
// Operations on the 128-bit blocks of a vector that Highway does not name, for x86 from SSE4 on. Where they are
// missing, VORTO_BLOCK_OPS is 0 and kernels that need them run their definition. Included once for each target, hence
// no guard but this one.
#if defined(VORTO_BLOCK_OPS_TARGET) == defined(HWY_TARGET_TOGGLE)
#ifdef VORTO_BLOCK_OPS_TARGET
#undef VORTO_BLOCK_OPS_TARGET
#else
#define VORTO_BLOCK_OPS_TARGET
#endif

#include <hwy/highway.h>

#undef VORTO_BLOCK_OPS
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_SSE4
#define VORTO_BLOCK_OPS 1
#else
#define VORTO_BLOCK_OPS 0
#endif

#if VORTO_BLOCK_OPS
HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using BlockBytes = hn::ScalableTag<std::uint8_t>;
using BlockSignedBytes = hn::Repartition<std::int8_t, BlockBytes>;
using BlockWords = hn::Repartition<std::uint16_t, BlockBytes>;
using BlockIntegers = hn::Repartition<std::int16_t, BlockBytes>;
using BlockWide = hn::Repartition<std::int32_t, BlockBytes>;
using BlockFloats = hn::Repartition<float, BlockBytes>;

#if HWY_TARGET <= HWY_AVX3
#define VORTO_BLOCK_OP(name) _mm512_##name
#elif HWY_TARGET == HWY_AVX2
#define VORTO_BLOCK_OP(name) _mm256_##name
#else
#define VORTO_BLOCK_OP(name) _mm_##name
#endif

// a[2i] x b[2i] + a[2i + 1] x b[2i + 1] in words, saturated.
HWY_INLINE hn::Vec<BlockIntegers> sumOfBytePairs(hn::Vec<BlockBytes> a, hn::Vec<BlockSignedBytes> b) {
  return hn::Vec<BlockIntegers>{VORTO_BLOCK_OP(maddubs_epi16)(a.raw, b.raw)};
}

// a[2i] + a[2i + 1] in double words.
HWY_INLINE hn::Vec<BlockWide> sumOfWordPairs(hn::Vec<BlockIntegers> a) {
  const auto ones = hn::Set(BlockIntegers(), 1);
  return hn::Vec<BlockWide>{VORTO_BLOCK_OP(madd_epi16)(a.raw, ones.raw)};
}

// In each block the eight values of a, then those of b, clamped to bytes.
HWY_INLINE hn::Vec<BlockBytes> packToBytes(hn::Vec<BlockIntegers> a, hn::Vec<BlockIntegers> b) {
  return hn::Vec<BlockBytes>{VORTO_BLOCK_OP(packus_epi16)(a.raw, b.raw)};
}

// In each block the four values of a, then those of b, clamped to words.
HWY_INLINE hn::Vec<BlockWords> packToWords(hn::Vec<BlockWide> a, hn::Vec<BlockWide> b) {
  return hn::Vec<BlockWords>{VORTO_BLOCK_OP(packus_epi32)(a.raw, b.raw)};
}

// In each block the four values of a, then those of b, clamped to signed words.
HWY_INLINE hn::Vec<BlockIntegers> packToIntegers(hn::Vec<BlockWide> a, hn::Vec<BlockWide> b) {
  return hn::Vec<BlockIntegers>{VORTO_BLOCK_OP(packs_epi32)(a.raw, b.raw)};
}

// Cut off to an integer; the most negative one for NaN and for what no integer can hold.
HWY_INLINE hn::Vec<BlockWide> truncateToIntegers(hn::Vec<BlockFloats> v) {
  return hn::Vec<BlockWide>{VORTO_BLOCK_OP(cvttps_epi32)(v.raw)};
}
#undef VORTO_BLOCK_OP

// Pixels of four bytes in memory from vectors with one channel of each pixel, clamped to bytes.
HWY_INLINE hn::Vec<BlockBytes> pixelBytesOf(hn::Vec<BlockWide> first, hn::Vec<BlockWide> second,
                                            hn::Vec<BlockWide> third, hn::Vec<BlockWide> fourth) {
  alignas(16) static constexpr std::uint8_t order[16] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
  const auto bytes = packToBytes(packToIntegers(first, second), packToIntegers(third, fourth));
  return hn::TableLookupBytes(bytes, hn::LoadDup128(BlockBytes(), order));
}

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
#endif
