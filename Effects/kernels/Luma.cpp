// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Luma.h"

#include "Effects/kernels/RowOfLayout.h"
#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Luma.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/Pixels-inl.h"

// Each returns how many lumas it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
template <class Layout>
std::size_t lumas(const typename Layout::Channel*, float*, std::size_t) {
  return 0;
}
#else
using Real = hn::Vec<Floats>;

struct Colors {
  Real red, green, blue;
  float unit;
};

HWY_INLINE Real realOf(hn::Vec<Wides> v) {
  return hn::ConvertTo(Floats(), hn::BitCast(hn::RebindToSigned<Wides>(), v));
}

template <class Layout>
HWY_INLINE Colors colorsAt(const std::uint8_t* place) {
  const auto v = hn::BitCast(Wides(), hn::LoadU(Bytes(), place));
  return {realOf(byteOf<Layout::kRed>(v)), realOf(byteOf<Layout::kGreen>(v)), realOf(byteOf<Layout::kBlue>(v)),
          1 / 255.0F};
}

template <class>
HWY_INLINE Colors colorsAt(const std::uint16_t* place) {
  const hn::Rebind<std::uint16_t, Wides> d;
  hn::Vec<decltype(d)> red, green, blue, alpha;
  hn::LoadInterleaved4(d, place, red, green, blue, alpha);
  return {realOf(hn::PromoteTo(Wides(), red)), realOf(hn::PromoteTo(Wides(), green)),
          realOf(hn::PromoteTo(Wides(), blue)), 1 / 65535.0F};
}

template <class>
HWY_INLINE Colors colorsAt(const float* place) {
  Real red, green, blue, alpha;
  hn::LoadInterleaved4(Floats(), place, red, green, blue, alpha);
  return {red, green, blue, 1};
}

template <class Layout>
std::size_t lumas(const typename Layout::Channel* in, float* out, std::size_t count) {
  const Floats d;
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    const Colors c = colorsAt<Layout>(in + 4 * i);
    const auto sum = hn::Add(hn::Add(hn::Mul(hn::Set(d, 0.2126F), c.red), hn::Mul(hn::Set(d, 0.7152F), c.green)),
                             hn::Mul(hn::Set(d, 0.0722F), c.blue));
    hn::StoreU(hn::Mul(sum, hn::Set(d, c.unit)), d, out + i);
  }
  return whole;
}
#endif

std::size_t lumasRGBA8(const std::uint8_t* in, float* out, std::size_t count) {
  return lumas<RGBA8>(in, out, count);
}
std::size_t lumasARGB8(const std::uint8_t* in, float* out, std::size_t count) {
  return lumas<ARGB8>(in, out, count);
}
std::size_t lumasWords(const std::uint16_t* in, float* out, std::size_t count) {
  return lumas<RGBA16>(in, out, count);
}
std::size_t lumasFloats(const float* in, float* out, std::size_t count) {
  return lumas<RGBAFloat>(in, out, count);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(lumasRGBA8);
HWY_EXPORT(lumasARGB8);
HWY_EXPORT(lumasWords);
HWY_EXPORT(lumasFloats);

template <class Layout>
void lumaRow(const typename Layout::Channel* in, float* out, std::size_t count) {
  std::size_t done = 0;
  if (!TCUsesScalarKernels()) {
    const auto row = rowOfLayout<Layout>(HWY_DYNAMIC_DISPATCH(lumasRGBA8), HWY_DYNAMIC_DISPATCH(lumasARGB8),
                                         HWY_DYNAMIC_DISPATCH(lumasWords), HWY_DYNAMIC_DISPATCH(lumasFloats));
    done = row(in, out, count);
  }
  lumaRowScalar<Layout>(in + 4 * done, out + done, count - done);
}

template void lumaRow<RGBA8>(const std::uint8_t*, float*, std::size_t);
template void lumaRow<ARGB8>(const std::uint8_t*, float*, std::size_t);
template void lumaRow<RGBA16>(const std::uint16_t*, float*, std::size_t);
template void lumaRow<RGBAFloat>(const float*, float*, std::size_t);

}  // namespace vorto::effects
#endif
