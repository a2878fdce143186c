// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Invert.h"

#include "Effects/kernels/RowOfLayout.h"
#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Invert.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/Pixels-inl.h"

// Each returns how many pixels it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
template <class Layout, class Channel>
std::size_t invert(const Channel*, Channel*, std::size_t) {
  return 0;
}
#else
// Where alpha is taken from itself there is 0, into which it is put back.
template <class Layout>
HWY_INLINE hn::Vec<Bytes> inverted(Bytes d, hn::Vec<Bytes> v) {
  constexpr std::uint8_t a = Layout::kAlpha;
  alignas(16) static constexpr std::uint8_t spread[16] = {a,     a,     a,     a,     4 + a,  4 + a,  4 + a,  4 + a,
                                                          8 + a, 8 + a, 8 + a, 8 + a, 12 + a, 12 + a, 12 + a, 12 + a};
  const auto alpha = hn::TableLookupBytes(v, hn::LoadDup128(d, spread));
  const auto isAlpha = hn::BitCast(d, hn::Set(Wides(), 0xFFU << (8 * Layout::kAlpha)));
  return hn::OrAnd(hn::SaturatedSub(alpha, v), v, isAlpha);
}

template <class>
HWY_INLINE hn::Vec<Words> inverted(Words d, hn::Vec<Words> v) {
  const auto isAlpha = hn::BitCast(d, hn::Set(Longs(), std::uint64_t{0xFFFF} << (16 * RGBA16::kAlpha)));
  return hn::OrAnd(hn::SaturatedSub(alphaOfWords(v), v), v, isAlpha);
}

template <class>
HWY_INLINE hn::Vec<Floats> inverted(Floats d, hn::Vec<Floats> v) {
  alignas(16) static constexpr std::uint32_t alphaBits[4] = {0, 0, 0, 0xFFFFFFFF};
  const auto isAlpha = hn::MaskFromVec(hn::BitCast(d, hn::LoadDup128(Wides(), alphaBits)));
  return hn::IfThenElse(isAlpha, v, hn::Sub(hn::Broadcast<RGBAFloat::kAlpha>(v), v));
}

template <class Layout, class Channel>
std::size_t invert(const Channel* in, Channel* out, std::size_t count) {
  const hn::ScalableTag<Channel> d;
  return storePixels(d, out, count, [=](std::size_t i) HWY_ATTR { return inverted<Layout>(d, hn::LoadU(d, in + i)); });
}
#endif

std::size_t invertRGBA8(const std::uint8_t* in, std::uint8_t* out, std::size_t count) {
  return invert<RGBA8>(in, out, count);
}
std::size_t invertARGB8(const std::uint8_t* in, std::uint8_t* out, std::size_t count) {
  return invert<ARGB8>(in, out, count);
}
std::size_t invertWords(const std::uint16_t* in, std::uint16_t* out, std::size_t count) {
  return invert<RGBA16>(in, out, count);
}
std::size_t invertFloats(const float* in, float* out, std::size_t count) {
  return invert<RGBAFloat>(in, out, count);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(invertRGBA8);
HWY_EXPORT(invertARGB8);
HWY_EXPORT(invertWords);
HWY_EXPORT(invertFloats);

template <class Layout>
void invertRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count) {
  const auto vectors = rowOfLayout<Layout>(HWY_DYNAMIC_DISPATCH(invertRGBA8), HWY_DYNAMIC_DISPATCH(invertARGB8),
                                           HWY_DYNAMIC_DISPATCH(invertWords), HWY_DYNAMIC_DISPATCH(invertFloats));
  const std::size_t done = TCUsesScalarKernels() ? 0 : vectors(in, out, count);
  invertRowScalar<Layout>(in + 4 * done, out + 4 * done, count - done);
}

template void invertRow<RGBA8>(const std::uint8_t*, std::uint8_t*, std::size_t);
template void invertRow<ARGB8>(const std::uint8_t*, std::uint8_t*, std::size_t);
template void invertRow<RGBA16>(const std::uint16_t*, std::uint16_t*, std::size_t);
template void invertRow<RGBAFloat>(const float*, float*, std::size_t);

}  // namespace vorto::effects
#endif
