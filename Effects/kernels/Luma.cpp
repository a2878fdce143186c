// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Luma.h"

#include "Effects/kernels/RowOfLayout.h"
#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Luma.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/PlanarPixels-inl.h"

// Each returns how many lumas it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
template <class Layout>
std::size_t lumas(const typename Layout::Channel*, float*, std::size_t) {
  return 0;
}
#else
template <class Layout>
std::size_t lumas(const typename Layout::Channel* in, float* out, std::size_t count) {
  const Floats d;
  const auto unit = hn::Set(d, 1 / fullOf<typename Layout::Channel>());
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    const Planar c = loadPlanar<Layout>(in + 4 * i);
    const auto sum = hn::Add(hn::Add(hn::Mul(hn::Set(d, 0.2126F), c.red), hn::Mul(hn::Set(d, 0.7152F), c.green)),
                             hn::Mul(hn::Set(d, 0.0722F), c.blue));
    hn::StoreU(inOrder<Layout>(hn::Mul(sum, unit)), d, out + i);
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
