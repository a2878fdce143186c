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

// v / 255, rounded once, for the integers 0 to 255: v / 256 is exact, so a multiply-add that does not round the product
// gives the same.
HWY_INLINE hn::Vec<BlockFloats> normalizedBytes(hn::Vec<BlockWide> v) {
  const BlockFloats d;
  const auto f = hn::ConvertTo(d, v);
  return hn::MulAdd(f, hn::Set(d, 0x1p-8f), hn::Mul(f, hn::Set(d, static_cast<float>(1.0 / 255 - 1.0 / 256))));
}

// v / 65535, rounded once, for the integers 0 to 65535, likewise.
HWY_INLINE hn::Vec<BlockFloats> normalizedWords(hn::Vec<BlockWide> v) {
  const BlockFloats d;
  const auto f = hn::ConvertTo(d, v);
  return hn::MulAdd(f, hn::Set(d, 0x1p-16f), hn::Mul(f, hn::Set(d, static_cast<float>(1.0 / 65535 - 1.0 / 65536))));
}

// floor(product + 0.5 + 1e-7) with the sum in double precision, for single-precision products below 2 to the 31;
// negative ones give some integer that is not positive. The single-precision sum of product and 0.5 has the right
// integer part but for the three largest numbers below 0.5, which the bias lifts to 1. Equal to the double-precision
// form for the products 255 v and 65535 v (cut at 2 to the 24) of all 2^32 float patterns v: checked by
// DISABLED_EveryFloatPattern of KernelRoundingTest.
HWY_INLINE hn::Vec<BlockWide> biasedFloor(hn::Vec<BlockFloats> product) {
  const BlockFloats d;
  const auto atLeastOne = hn::Ge(product, hn::Set(d, 0.5f - 3 * 0x1p-25f));
  const auto sum = hn::Add(product, hn::Set(d, 0.5f));
  return truncateToIntegers(hn::Max(sum, hn::IfThenElseZero(atLeastOne, hn::Set(d, 1.0f))));
}

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
#endif
