// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Over.h"

#include "Effects/Support/PixelLayout.h"
#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Over.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/Pixels-inl.h"

// Each returns how many pixels it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
std::size_t overRGBA8(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t) {
  return 0;
}
std::size_t overARGB8(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t) {
  return 0;
}
std::size_t overWords(const std::uint16_t*, const std::uint16_t*, std::uint16_t*, std::size_t) {
  return 0;
}
std::size_t overFloats(const float*, const float*, float*, std::size_t) {
  return 0;
}
#else
template <class Layout>
std::size_t overBytes(const std::uint8_t* background, const std::uint8_t* foreground, std::uint8_t* out,
                      std::size_t count) {
  const Bytes d;
  const auto full = hn::Set(Words(), 0x00FF);
  const std::size_t whole = wholeVectors(d, count);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    const auto behind = hn::LoadU(d, background + i);
    const auto front = hn::LoadU(d, foreground + i);
    const auto uncovered = hn::Xor(alphaOfBytes<Layout::kAlpha>(front), full);
    const auto even = productOfBytes(evenBytes(behind), uncovered);
    const auto odd = productOfBytes(oddBytes(behind), uncovered);
    storeNext<false>(hn::SaturatedAdd(front, joinedHighBytes(even, odd)), d, out + i);
  }
  return whole / 4;
}

std::size_t overRGBA8(const std::uint8_t* background, const std::uint8_t* foreground, std::uint8_t* out,
                      std::size_t count) {
  return overBytes<RGBA8>(background, foreground, out, count);
}

std::size_t overARGB8(const std::uint8_t* background, const std::uint8_t* foreground, std::uint8_t* out,
                      std::size_t count) {
  return overBytes<ARGB8>(background, foreground, out, count);
}

std::size_t overWords(const std::uint16_t* background, const std::uint16_t* foreground, std::uint16_t* out,
                      std::size_t count) {
  const Words d;
  const std::size_t whole = wholeVectors(d, count);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    const auto front = hn::LoadU(d, foreground + i);
    const auto shown = productOfWords(hn::LoadU(d, background + i), hn::Not(alphaOfWords(front)));
    storeNext<false>(hn::SaturatedAdd(front, shown), d, out + i);
  }
  return whole / 4;
}

std::size_t overFloats(const float* background, const float* foreground, float* out, std::size_t count) {
  const Floats d;
  const auto one = hn::Set(d, 1.0F);
  const std::size_t whole = wholeVectors(d, count);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    const auto front = hn::LoadU(d, foreground + i);
    const auto uncovered = hn::Sub(one, hn::Broadcast<3>(front));
    storeNext<false>(hn::Add(front, hn::Mul(hn::LoadU(d, background + i), uncovered)), d, out + i);
  }
  return whole / 4;
}

#endif

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(overRGBA8);
HWY_EXPORT(overARGB8);
HWY_EXPORT(overWords);
HWY_EXPORT(overFloats);

template <class Layout>
void overRow(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
             typename Layout::Channel* out, std::size_t count) {
  if (TCUsesScalarKernels()) return overRowScalar<Layout>(background, foreground, out, count);
  std::size_t done = 0;
  if constexpr (std::is_same_v<Layout, RGBA8>) {
    done = HWY_DYNAMIC_DISPATCH(overRGBA8)(background, foreground, out, count);
  } else if constexpr (std::is_same_v<Layout, ARGB8>) {
    done = HWY_DYNAMIC_DISPATCH(overARGB8)(background, foreground, out, count);
  } else if constexpr (std::is_same_v<Layout, RGBA16>) {
    done = HWY_DYNAMIC_DISPATCH(overWords)(background, foreground, out, count);
  } else {
    done = HWY_DYNAMIC_DISPATCH(overFloats)(background, foreground, out, count);
  }
  overRowScalar<Layout>(background + 4 * done, foreground + 4 * done, out + 4 * done, count - done);
}

template void overRow<RGBA8>(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t);
template void overRow<ARGB8>(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t);
template void overRow<RGBA16>(const std::uint16_t*, const std::uint16_t*, std::uint16_t*, std::size_t);
template void overRow<RGBAFloat>(const float*, const float*, float*, std::size_t);

}  // namespace vorto::effects
#endif
