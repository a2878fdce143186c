// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/AlphaComplement.h"

#include "TarnCore/kernels/Dispatch.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "TarnCore/kernels/AlphaComplement.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "TarnCore/kernels/Stores-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
void complementHalf(std::uint8_t* pixels, std::size_t count) {
  complementAlphaHalfScalar(pixels, count);
}
void complementFloat(std::uint8_t* pixels, std::size_t count) {
  complementAlphaFloatScalar(pixels, count);
}
#else
using Floats = hn::ScalableTag<float>;

// Lanes of alpha: the last of every four.
HWY_INLINE hn::Mask<Floats> alphaLanes(Floats d) {
  alignas(16) static constexpr std::uint32_t lanes[4] = {0, 0, 0, 0xFFFFFFFFu};
  const hn::RebindToUnsigned<Floats> bits;
  return hn::MaskFromVec(hn::BitCast(d, hn::LoadDup128(bits, lanes)));
}

void complementFloat(std::uint8_t* pixels, std::size_t count) {
  const Floats d;
  auto* const channels = reinterpret_cast<float*>(pixels);
  const auto isAlpha = alphaLanes(d);
  const auto one = hn::Set(d, 1.0f);
  const std::size_t whole = count * 4 / hn::Lanes(d) * hn::Lanes(d);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    const auto v = hn::LoadU(d, channels + i);
    storeNext<false>(hn::IfThenElse(isAlpha, hn::Sub(one, v), v), d, channels + i);
  }
  complementAlphaFloatScalar(pixels + 4 * whole, count - whole / 4);
}

void complementHalf(std::uint8_t* pixels, std::size_t count) {
  std::size_t whole = 0;
// Only these have instructions that convert halves.
#if HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX3_DL
  const Floats d;
  const hn::Rebind<std::uint16_t, Floats> dw;
  const hn::Rebind<hwy::float16_t, Floats> dh;
  auto* const channels = reinterpret_cast<std::uint16_t*>(pixels);
  const hn::Repartition<std::uint64_t, decltype(dw)> dp;
  const auto alphaBits = hn::BitCast(dw, hn::Set(dp, 0xFFFF000000000000u));
  const auto one = hn::Set(d, 1.0f);
  whole = count * 4 / hn::Lanes(d) * hn::Lanes(d);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    const auto v = hn::LoadU(dw, channels + i);
    const auto complement = hn::DemoteTo(dh, hn::Sub(one, hn::PromoteTo(d, hn::BitCast(dh, v))));
    storeNext<false>(hn::IfVecThenElse(alphaBits, hn::BitCast(dw, complement), v), dw, channels + i);
  }
#endif
  complementAlphaHalfScalar(pixels + 2 * whole, count - whole / 4);
}
#endif

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::kernels {

HWY_EXPORT(complementHalf);
HWY_EXPORT(complementFloat);

void complementAlphaHalf(std::uint8_t* pixels, std::size_t count) {
  if (useScalar()) return complementAlphaHalfScalar(pixels, count);
  HWY_DYNAMIC_DISPATCH(complementHalf)(pixels, count);
}

void complementAlphaFloat(std::uint8_t* pixels, std::size_t count) {
  if (useScalar()) return complementAlphaFloatScalar(pixels, count);
  HWY_DYNAMIC_DISPATCH(complementFloat)(pixels, count);
}

}  // namespace vorto::kernels
#endif
