// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Multiply.h"

#include "Effects/Support/PixelLayout.h"
#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Multiply.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/Pixels-inl.h"

// Each returns how many pixels it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
std::size_t multiplyRGBA8(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t) {
  return 0;
}
std::size_t multiplyARGB8(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t) {
  return 0;
}
std::size_t multiplyWords(const std::uint16_t*, const std::uint16_t*, std::uint16_t*, std::size_t) {
  return 0;
}
std::size_t multiplyFloats(const float*, const float*, float*, std::size_t) {
  return 0;
}
#else
// The three products of bytes, rounded once over 255 and stopped at 255, in the high byte. Sums stop at 65535 on the
// way: what lies above 255 x 255 gives 255 whatever it is.
HWY_INLINE hn::Vec<Words> multipliedBytes(hn::Vec<Words> behind, hn::Vec<Words> front, hn::Vec<Words> behindUncovered,
                                          hn::Vec<Words> frontUncovered) {
  const Words d;
  const auto both = hn::SaturatedAdd(hn::Mul(front, behind), hn::Mul(front, behindUncovered));
  const auto sum = hn::Min(hn::SaturatedAdd(both, hn::Mul(behind, frontUncovered)), hn::Set(d, 255 * 255));
  const auto n = hn::Add(sum, hn::Set(d, 127));
  return hn::Add(hn::Add(n, hn::Set(d, 1)), hn::ShiftRight<8>(n));
}

template <class Layout>
std::size_t multiplyBytes(const std::uint8_t* background, const std::uint8_t* foreground, std::uint8_t* out,
                          std::size_t count) {
  const Bytes d;
  const auto full = hn::Set(Words(), 0x00FF);
  const std::size_t whole = wholeVectors(d, count);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    const auto behind = hn::LoadU(d, background + i);
    const auto front = hn::LoadU(d, foreground + i);
    const auto behindUncovered = hn::Xor(alphaOfBytes<Layout::kAlpha>(behind), full);
    const auto frontUncovered = hn::Xor(alphaOfBytes<Layout::kAlpha>(front), full);
    const auto even = multipliedBytes(evenBytes(behind), evenBytes(front), behindUncovered, frontUncovered);
    const auto odd = multipliedBytes(oddBytes(behind), oddBytes(front), behindUncovered, frontUncovered);
    storeNext<false>(joinedHighBytes(even, odd), d, out + i);
  }
  return whole / 4;
}

std::size_t multiplyRGBA8(const std::uint8_t* background, const std::uint8_t* foreground, std::uint8_t* out,
                          std::size_t count) {
  return multiplyBytes<RGBA8>(background, foreground, out, count);
}

std::size_t multiplyARGB8(const std::uint8_t* background, const std::uint8_t* foreground, std::uint8_t* out,
                          std::size_t count) {
  return multiplyBytes<ARGB8>(background, foreground, out, count);
}

// A sum of products of words in two halves; `high` stops at 65535, for the result does as well.
struct WideSum {
  hn::Vec<Words> high;
  hn::Vec<Words> low;

  HWY_INLINE void add(hn::Vec<Words> addedHigh, hn::Vec<Words> addedLow) {
    low = hn::Add(low, addedLow);
    high = hn::SaturatedAdd(hn::SaturatedAdd(high, addedHigh), hn::ShiftRight<15>(carryOf(low, addedLow)));
  }
  HWY_INLINE void addProduct(hn::Vec<Words> a, hn::Vec<Words> b) { add(hn::MulHigh(a, b), hn::Mul(a, b)); }
};

// The three products, rounded once over 65535. 65536 h + l is 65535 h + (h + l): the quotient is h, and 1 more when h +
// l reaches 65535.
HWY_INLINE hn::Vec<Words> multipliedWords(hn::Vec<Words> behind, hn::Vec<Words> front) {
  const Words d;
  WideSum sum{hn::Zero(d), hn::Set(d, 32767)};
  sum.addProduct(front, behind);
  sum.addProduct(front, hn::Not(alphaOfWords(behind)));
  sum.addProduct(behind, hn::Not(alphaOfWords(front)));
  const auto reaches = hn::Not(hn::VecFromMask(d, hn::Lt(sum.low, hn::Not(sum.high))));
  return hn::SaturatedAdd(sum.high, hn::ShiftRight<15>(reaches));
}

std::size_t multiplyWords(const std::uint16_t* background, const std::uint16_t* foreground, std::uint16_t* out,
                          std::size_t count) {
  const Words d;
  const std::size_t whole = wholeVectors(d, count);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    storeNext<false>(multipliedWords(hn::LoadU(d, background + i), hn::LoadU(d, foreground + i)), d, out + i);
  }
  return whole / 4;
}

std::size_t multiplyFloats(const float* background, const float* foreground, float* out, std::size_t count) {
  const Floats d;
  const auto one = hn::Set(d, 1.0F);
  const std::size_t whole = wholeVectors(d, count);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    const auto behind = hn::LoadU(d, background + i);
    const auto front = hn::LoadU(d, foreground + i);
    const auto frontShown = hn::Mul(front, hn::Sub(one, hn::Broadcast<3>(behind)));
    const auto behindShown = hn::Mul(behind, hn::Sub(one, hn::Broadcast<3>(front)));
    storeNext<false>(hn::Add(hn::Add(hn::Mul(front, behind), frontShown), behindShown), d, out + i);
  }
  return whole / 4;
}

#endif

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(multiplyRGBA8);
HWY_EXPORT(multiplyARGB8);
HWY_EXPORT(multiplyWords);
HWY_EXPORT(multiplyFloats);

template <class Layout>
void multiplyRow(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
                 typename Layout::Channel* out, std::size_t count) {
  if (TCUsesScalarKernels()) return multiplyRowScalar<Layout>(background, foreground, out, count);
  std::size_t done = 0;
  if constexpr (std::is_same_v<Layout, RGBA8>) {
    done = HWY_DYNAMIC_DISPATCH(multiplyRGBA8)(background, foreground, out, count);
  } else if constexpr (std::is_same_v<Layout, ARGB8>) {
    done = HWY_DYNAMIC_DISPATCH(multiplyARGB8)(background, foreground, out, count);
  } else if constexpr (std::is_same_v<Layout, RGBA16>) {
    done = HWY_DYNAMIC_DISPATCH(multiplyWords)(background, foreground, out, count);
  } else {
    done = HWY_DYNAMIC_DISPATCH(multiplyFloats)(background, foreground, out, count);
  }
  multiplyRowScalar<Layout>(background + 4 * done, foreground + 4 * done, out + 4 * done, count - done);
}

template void multiplyRow<RGBA8>(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t);
template void multiplyRow<ARGB8>(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t);
template void multiplyRow<RGBA16>(const std::uint16_t*, const std::uint16_t*, std::uint16_t*, std::size_t);
template void multiplyRow<RGBAFloat>(const float*, const float*, float*, std::size_t);

}  // namespace vorto::effects
#endif
