// SPDX-License-Identifier: BSD-3-Clause
// How stored values become numbers and numbers stored values, in vectors. Included once for each target, hence no guard
// but this one.
#if defined(VORTO_ROUNDING_TARGET) == defined(HWY_TARGET_TOGGLE)
#ifdef VORTO_ROUNDING_TARGET
#undef VORTO_ROUNDING_TARGET
#else
#define VORTO_ROUNDING_TARGET
#endif

#include "TarnCore/kernels/BlockOps-inl.h"

#if VORTO_BLOCK_OPS
HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {

// The byte at an index of every pixel of four bytes, divided by 255 and rounded once; for 0 some number from 0 to
// `nothing`, which is as good as 0 beside or instead of anything that a byte is made of.
template <int index>
HWY_INLINE hn::Vec<BlockFloats> normalizedByte(hn::Vec<BlockBytes> pixels, float nothing = 1e-20f) {
  const BlockFloats d;
#if HWY_TARGET <= HWY_AVX2
  // v / 255 is the byte v over and over behind the point. The byte twice, times 1 / 65535 in single precision, is the
  // byte four times, exact in a multiply-add. What is missing counts where it breaks a tie, so something is added.
  constexpr std::uint8_t i = index;
  alignas(16) static constexpr std::uint8_t twice[16] = {i,     i,     128, 128, 4 + i,  4 + i,  128, 128,
                                                         8 + i, 8 + i, 128, 128, 12 + i, 12 + i, 128, 128};
  const auto words = hn::BitCast(BlockWide(), hn::TableLookupBytesOr0(pixels, hn::LoadDup128(BlockBytes(), twice)));
  return hn::MulAdd(hn::ConvertTo(d, words), hn::Set(d, 0x1.0001p-16f), hn::Set(d, nothing));
#else
  (void)nothing;
  // v / 256 is exact, so a multiply-add that rounds the product gives the same as one that does not.
  const hn::Repartition<std::uint32_t, BlockBytes> dp;
  const auto byte = hn::And(hn::ShiftRight<8 * index>(hn::BitCast(dp, pixels)), hn::Set(dp, 255));
  const auto f = hn::ConvertTo(d, hn::BitCast(BlockWide(), byte));
  return hn::MulAdd(f, hn::Set(d, 0x1p-8f), hn::Mul(f, hn::Set(d, static_cast<float>(1.0 / 255 - 1.0 / 256))));
#endif
}

// The same for alphas by which is divided: for 0 so much less that a number as large as any color beside it, over this,
// times 255, is no integer but is converted to one that is negative, or is 0. Either way 0 is stored.
template <int index>
HWY_INLINE hn::Vec<BlockFloats> normalizedAlpha(hn::Vec<BlockBytes> pixels) {
  return normalizedByte<index>(pixels, 1e-30f);
}

// v / 65535, rounded once, for the integers 0 to 65535: v / 65536 is exact.
HWY_INLINE hn::Vec<BlockFloats> normalizedWords(hn::Vec<BlockWide> v) {
  const BlockFloats d;
  const auto f = hn::ConvertTo(d, v);
  return hn::MulAdd(f, hn::Set(d, 0x1p-16f), hn::Mul(f, hn::Set(d, static_cast<float>(1.0 / 65535 - 1.0 / 65536))));
}

// floor(p + 0.5 + 1e-7) of the single-precision product p of v and `largest`, 255 or 65535, with the sum in double
// precision, for products below 2 to the 31; negative ones and NaN give some integer that is not positive.
//
// p and 0.5 add up to the right integer part in single precision but for the largest numbers below 0.5, which the bias
// lifts to 1; a little that no larger sum feels does so too. A multiply-add does not round p, yet reaches an integer k
// where p reaches k - 0.5: numbers are spaced alike in both places. Checked by EveryStepOfRounding of
// KernelRoundingTest.
template <int largest>
HWY_INLINE hn::Vec<BlockWide> roundedProduct(hn::Vec<BlockFloats> v) {
  const BlockFloats d;
  const auto scale = hn::Set(d, static_cast<float>(largest));
  const auto half = hn::Set(d, 0.5f);
#if HWY_TARGET <= HWY_AVX2
  return truncateToIntegers(hn::Add(hn::MulAdd(v, scale, half), hn::Set(d, 0x1p-25f)));
#else
  return truncateToIntegers(hn::Add(hn::Add(hn::Mul(v, scale), hn::Set(d, 0x1.fffffep-25f)), half));
#endif
}

// n / d, rounded as a division is, from the inverse of d, which is rounded as a division is: equal for the inverses of
// 1/255 to 255/255 and every mantissa of n, checked by EveryMantissaOverEveryAlpha of KernelRoundingTest. Only for n
// that neither the quotient nor its rounding error takes out of the range of floats.
HWY_INLINE hn::Vec<BlockFloats> quotient(hn::Vec<BlockFloats> n, hn::Vec<BlockFloats> d, hn::Vec<BlockFloats> inverse) {
#if HWY_TARGET <= HWY_AVX2
  const auto near = hn::Mul(n, inverse);
  return hn::MulAdd(hn::NegMulAdd(near, d, n), inverse, near);
#else
  (void)inverse;
  return hn::Div(n, d);
#endif
}

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
#endif
