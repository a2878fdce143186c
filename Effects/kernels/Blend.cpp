// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Blend.h"

#include "Effects/kernels/RowOfLayout.h"
#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Blend.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/Pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
template <class Mode, class Layout, class Channel>
std::size_t blend(const Channel*, const Channel*, Channel*, std::size_t) {
  return 0;
}
#else
template <class Layout>
HWY_INLINE hn::Vec<Bytes> blended(OverMode, Bytes, hn::Vec<Bytes> behind, hn::Vec<Bytes> front) {
  const auto uncovered = hn::Xor(alphaOfBytes<Layout::kAlpha>(front), hn::Set(Words(), 0x00FF));
  const auto even = productOfBytes(evenBytes(behind), uncovered);
  const auto odd = productOfBytes(oddBytes(behind), uncovered);
  return hn::SaturatedAdd(front, joinedHighBytes(even, odd));
}

template <class>
HWY_INLINE hn::Vec<Words> blended(OverMode, Words, hn::Vec<Words> behind, hn::Vec<Words> front) {
  return hn::SaturatedAdd(front, productOfWords(behind, hn::Not(alphaOfWords(front))));
}

template <class>
HWY_INLINE hn::Vec<Floats> blended(OverMode, Floats d, hn::Vec<Floats> behind, hn::Vec<Floats> front) {
  return hn::Add(front, hn::Mul(behind, hn::Sub(hn::Set(d, 1.0F), hn::Broadcast<3>(front))));
}

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
HWY_INLINE hn::Vec<Bytes> blended(MultiplyMode, Bytes, hn::Vec<Bytes> behind, hn::Vec<Bytes> front) {
  const auto full = hn::Set(Words(), 0x00FF);
  const auto behindUncovered = hn::Xor(alphaOfBytes<Layout::kAlpha>(behind), full);
  const auto frontUncovered = hn::Xor(alphaOfBytes<Layout::kAlpha>(front), full);
  const auto even = multipliedBytes(evenBytes(behind), evenBytes(front), behindUncovered, frontUncovered);
  const auto odd = multipliedBytes(oddBytes(behind), oddBytes(front), behindUncovered, frontUncovered);
  return joinedHighBytes(even, odd);
}

// A sum of products of words in two halves; `high` stops at 65535, for the result does as well.
struct WideSum {
  hn::Vec<Words> high;
  hn::Vec<Words> low;

  HWY_INLINE void addProduct(hn::Vec<Words> a, hn::Vec<Words> b) {
    const auto addedLow = hn::Mul(a, b);
    low = hn::Add(low, addedLow);
    high = hn::SaturatedAdd(hn::SaturatedAdd(high, hn::MulHigh(a, b)), hn::ShiftRight<15>(carryOf(low, addedLow)));
  }
};

// The three products, rounded once over 65535. 65536 h + l is 65535 h + (h + l): the quotient is h, and 1 more when h +
// l reaches 65535.
template <class>
HWY_INLINE hn::Vec<Words> blended(MultiplyMode, Words d, hn::Vec<Words> behind, hn::Vec<Words> front) {
  WideSum sum{hn::Zero(d), hn::Set(d, 32767)};
  sum.addProduct(front, behind);
  sum.addProduct(front, hn::Not(alphaOfWords(behind)));
  sum.addProduct(behind, hn::Not(alphaOfWords(front)));
  const auto reaches = hn::Not(hn::VecFromMask(d, hn::Lt(sum.low, hn::Not(sum.high))));
  return hn::SaturatedAdd(sum.high, hn::ShiftRight<15>(reaches));
}

template <class>
HWY_INLINE hn::Vec<Floats> blended(MultiplyMode, Floats d, hn::Vec<Floats> behind, hn::Vec<Floats> front) {
  const auto one = hn::Set(d, 1.0F);
  const auto frontShown = hn::Mul(front, hn::Sub(one, hn::Broadcast<3>(behind)));
  const auto behindShown = hn::Mul(behind, hn::Sub(one, hn::Broadcast<3>(front)));
  return hn::Add(hn::Add(hn::Mul(front, behind), frontShown), behindShown);
}

// Returns how many pixels it made: whole vectors of them.
template <class Mode, class Layout, class Channel>
std::size_t blend(const Channel* background, const Channel* foreground, Channel* out, std::size_t count) {
  const hn::ScalableTag<Channel> d;
  const std::size_t whole = wholeVectors(d, count);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    storeNext<false>(blended<Layout>(Mode(), d, hn::LoadU(d, background + i), hn::LoadU(d, foreground + i)), d,
                     out + i);
  }
  return whole / 4;
}
#endif

using Byte = std::uint8_t;
using Word = std::uint16_t;
std::size_t overRGBA8(const Byte* background, const Byte* foreground, Byte* out, std::size_t count) {
  return blend<OverMode, RGBA8>(background, foreground, out, count);
}
std::size_t overARGB8(const Byte* background, const Byte* foreground, Byte* out, std::size_t count) {
  return blend<OverMode, ARGB8>(background, foreground, out, count);
}
std::size_t overWords(const Word* background, const Word* foreground, Word* out, std::size_t count) {
  return blend<OverMode, RGBA16>(background, foreground, out, count);
}
std::size_t overFloats(const float* background, const float* foreground, float* out, std::size_t count) {
  return blend<OverMode, RGBAFloat>(background, foreground, out, count);
}
std::size_t multiplyRGBA8(const Byte* background, const Byte* foreground, Byte* out, std::size_t count) {
  return blend<MultiplyMode, RGBA8>(background, foreground, out, count);
}
std::size_t multiplyARGB8(const Byte* background, const Byte* foreground, Byte* out, std::size_t count) {
  return blend<MultiplyMode, ARGB8>(background, foreground, out, count);
}
std::size_t multiplyWords(const Word* background, const Word* foreground, Word* out, std::size_t count) {
  return blend<MultiplyMode, RGBA16>(background, foreground, out, count);
}
std::size_t multiplyFloats(const float* background, const float* foreground, float* out, std::size_t count) {
  return blend<MultiplyMode, RGBAFloat>(background, foreground, out, count);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(overRGBA8);
HWY_EXPORT(overARGB8);
HWY_EXPORT(overWords);
HWY_EXPORT(overFloats);
HWY_EXPORT(multiplyRGBA8);
HWY_EXPORT(multiplyARGB8);
HWY_EXPORT(multiplyWords);
HWY_EXPORT(multiplyFloats);

namespace {

template <class Layout>
auto vectorsOf(OverMode) {
  return rowOfLayout<Layout>(HWY_DYNAMIC_DISPATCH(overRGBA8), HWY_DYNAMIC_DISPATCH(overARGB8),
                             HWY_DYNAMIC_DISPATCH(overWords), HWY_DYNAMIC_DISPATCH(overFloats));
}

template <class Layout>
auto vectorsOf(MultiplyMode) {
  return rowOfLayout<Layout>(HWY_DYNAMIC_DISPATCH(multiplyRGBA8), HWY_DYNAMIC_DISPATCH(multiplyARGB8),
                             HWY_DYNAMIC_DISPATCH(multiplyWords), HWY_DYNAMIC_DISPATCH(multiplyFloats));
}

}  // namespace

template <class Mode, class Layout>
void blendRow(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
              typename Layout::Channel* out, std::size_t count) {
  const std::size_t done = TCUsesScalarKernels() ? 0 : vectorsOf<Layout>(Mode())(background, foreground, out, count);
  blendRowScalar<Mode, Layout>(background + 4 * done, foreground + 4 * done, out + 4 * done, count - done);
}

using Byte = std::uint8_t;
using Word = std::uint16_t;
template void blendRow<OverMode, RGBA8>(const Byte*, const Byte*, Byte*, std::size_t);
template void blendRow<OverMode, ARGB8>(const Byte*, const Byte*, Byte*, std::size_t);
template void blendRow<OverMode, RGBA16>(const Word*, const Word*, Word*, std::size_t);
template void blendRow<OverMode, RGBAFloat>(const float*, const float*, float*, std::size_t);
template void blendRow<MultiplyMode, RGBA8>(const Byte*, const Byte*, Byte*, std::size_t);
template void blendRow<MultiplyMode, ARGB8>(const Byte*, const Byte*, Byte*, std::size_t);
template void blendRow<MultiplyMode, RGBA16>(const Word*, const Word*, Word*, std::size_t);
template void blendRow<MultiplyMode, RGBAFloat>(const float*, const float*, float*, std::size_t);

}  // namespace vorto::effects
#endif
