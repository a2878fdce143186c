// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Unsharp.h"

#include "Effects/kernels/RowOfLayout.h"
#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Unsharp.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/FloatPixels-inl.h"

// Each returns how many pixels it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
template <class Layout, class Channel>
std::size_t unsharp(const Channel*, const float*, Channel*, std::size_t, UnsharpSettings) {
  return 0;
}
#else
template <class Layout>
std::size_t unsharp(const typename Layout::Channel* in, const float* blurred, typename Layout::Channel* out,
                    std::size_t count, UnsharpSettings settings) {
  const Floats d;
  alignas(16) static constexpr std::uint32_t alphaBits[2][4] = {{0, 0, 0, 0xFFFFFFFF}, {0xFFFFFFFF, 0, 0, 0}};
  const auto isAlpha = hn::MaskFromVec(hn::BitCast(d, hn::LoadDup128(Wides(), alphaBits[Layout::kAlpha == 3 ? 0 : 1])));
  const auto zero = hn::Zero(d);
  const auto amount = hn::Set(d, settings.amount);
  const auto threshold = hn::Set(d, settings.threshold);
  const std::size_t whole = wholeVectors(d, count);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    const auto color = loadedFloats(d, in + i);
    const auto soft = hn::LoadU(d, blurred + i);
    const auto alpha = hn::Broadcast<Layout::kAlpha>(color);
    const auto around = hn::Broadcast<Layout::kAlpha>(soft);
    const auto isShown = hn::And(hn::Gt(alpha, zero), hn::Gt(around, zero));
    const auto share = hn::Div(alpha, hn::IfThenElse(isShown, around, hn::Set(d, 1.0F)));
    const auto difference = hn::Sub(color, hn::Mul(soft, share));
    const auto counts = hn::And(isShown, hn::Ge(hn::Abs(difference), hn::Mul(threshold, alpha)));
    const auto sharp = hn::Add(color, hn::Mul(amount, difference));
    const auto made = hn::IfThenElse(hn::AndNot(isAlpha, counts), sharp, color);
    expectWriteBehind(out + i);
    storeFloats<Layout>(made, d, out + i);
  }
  return whole / 4;
}
#endif

using Byte = std::uint8_t;
using Word = std::uint16_t;
std::size_t unsharpRGBA8(const Byte* in, const float* blurred, Byte* out, std::size_t count, UnsharpSettings settings) {
  return unsharp<RGBA8>(in, blurred, out, count, settings);
}
std::size_t unsharpARGB8(const Byte* in, const float* blurred, Byte* out, std::size_t count, UnsharpSettings settings) {
  return unsharp<ARGB8>(in, blurred, out, count, settings);
}
std::size_t unsharpWords(const Word* in, const float* blurred, Word* out, std::size_t count, UnsharpSettings settings) {
  return unsharp<RGBA16>(in, blurred, out, count, settings);
}
std::size_t unsharpFloats(const float* in, const float* blurred, float* out, std::size_t count,
                          UnsharpSettings settings) {
  return unsharp<RGBAFloat>(in, blurred, out, count, settings);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(unsharpRGBA8);
HWY_EXPORT(unsharpARGB8);
HWY_EXPORT(unsharpWords);
HWY_EXPORT(unsharpFloats);

template <class Layout>
void unsharpRow(const typename Layout::Channel* in, const float* blurred, typename Layout::Channel* out,
                std::size_t count, UnsharpSettings settings) {
  const auto vectors = rowOfLayout<Layout>(HWY_DYNAMIC_DISPATCH(unsharpRGBA8), HWY_DYNAMIC_DISPATCH(unsharpARGB8),
                                           HWY_DYNAMIC_DISPATCH(unsharpWords), HWY_DYNAMIC_DISPATCH(unsharpFloats));
  const std::size_t done = TCUsesScalarKernels() ? 0 : vectors(in, blurred, out, count, settings);
  unsharpRowScalar<Layout>(in + 4 * done, blurred + 4 * done, out + 4 * done, count - done, settings);
}

using Byte = std::uint8_t;
using Word = std::uint16_t;
template void unsharpRow<RGBA8>(const Byte*, const float*, Byte*, std::size_t, UnsharpSettings);
template void unsharpRow<ARGB8>(const Byte*, const float*, Byte*, std::size_t, UnsharpSettings);
template void unsharpRow<RGBA16>(const Word*, const float*, Word*, std::size_t, UnsharpSettings);
template void unsharpRow<RGBAFloat>(const float*, const float*, float*, std::size_t, UnsharpSettings);

}  // namespace vorto::effects
#endif
