// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Fill.h"

#include "Effects/kernels/RowOfLayout.h"
#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Fill.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/Pixels-inl.h"

// Each returns how many pixels it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
template <class Layout, class Channel>
std::size_t fill(const Channel*, Channel*, std::size_t, const Channel*) {
  return 0;
}
#else
template <class Layout>
HWY_INLINE hn::Vec<Bytes> filled(Bytes, hn::Vec<Bytes> v, hn::Vec<Bytes> color) {
  const auto alpha = alphaOfBytes<Layout::kAlpha>(v);
  return joinedHighBytes(productOfBytes(evenBytes(color), alpha), productOfBytes(oddBytes(color), alpha));
}

template <class>
HWY_INLINE hn::Vec<Words> filled(Words, hn::Vec<Words> v, hn::Vec<Words> color) {
  return productOfWords(color, alphaOfWords(v));
}

template <class>
HWY_INLINE hn::Vec<Floats> filled(Floats, hn::Vec<Floats> v, hn::Vec<Floats> color) {
  return hn::Mul(color, hn::Broadcast<RGBAFloat::kAlpha>(v));
}

template <class Layout, class Channel>
std::size_t fill(const Channel* in, Channel* out, std::size_t count, const Channel* color) {
  const hn::ScalableTag<Channel> d;
  HWY_ALIGN Channel pixels[hn::MaxLanes(d)];
  for (std::size_t i = 0; i < hn::Lanes(d); ++i) pixels[i] = color[i % 4];
  const auto colors = hn::Load(d, pixels);
  return storePixels(d, out, count,
                     [=](std::size_t i) HWY_ATTR { return filled<Layout>(d, hn::LoadU(d, in + i), colors); });
}
#endif

std::size_t fillRGBA8(const std::uint8_t* in, std::uint8_t* out, std::size_t count, const std::uint8_t* color) {
  return fill<RGBA8>(in, out, count, color);
}
std::size_t fillARGB8(const std::uint8_t* in, std::uint8_t* out, std::size_t count, const std::uint8_t* color) {
  return fill<ARGB8>(in, out, count, color);
}
std::size_t fillWords(const std::uint16_t* in, std::uint16_t* out, std::size_t count, const std::uint16_t* color) {
  return fill<RGBA16>(in, out, count, color);
}
std::size_t fillFloats(const float* in, float* out, std::size_t count, const float* color) {
  return fill<RGBAFloat>(in, out, count, color);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(fillRGBA8);
HWY_EXPORT(fillARGB8);
HWY_EXPORT(fillWords);
HWY_EXPORT(fillFloats);

template <class Layout>
void fillRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
             const LaidPixel<Layout>& color) {
  const auto vectors = rowOfLayout<Layout>(HWY_DYNAMIC_DISPATCH(fillRGBA8), HWY_DYNAMIC_DISPATCH(fillARGB8),
                                           HWY_DYNAMIC_DISPATCH(fillWords), HWY_DYNAMIC_DISPATCH(fillFloats));
  const std::size_t done = TCUsesScalarKernels() ? 0 : vectors(in, out, count, color.data());
  fillRowScalar<Layout>(in + 4 * done, out + 4 * done, count - done, color);
}

using Byte = std::uint8_t;
using Word = std::uint16_t;
template void fillRow<RGBA8>(const Byte*, Byte*, std::size_t, const LaidPixel<RGBA8>&);
template void fillRow<ARGB8>(const Byte*, Byte*, std::size_t, const LaidPixel<ARGB8>&);
template void fillRow<RGBA16>(const Word*, Word*, std::size_t, const LaidPixel<RGBA16>&);
template void fillRow<RGBAFloat>(const float*, float*, std::size_t, const LaidPixel<RGBAFloat>&);

}  // namespace vorto::effects
#endif
