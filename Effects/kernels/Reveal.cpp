// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Reveal.h"

#include "Effects/Support/Arithmetic.h"
#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Reveal.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

// Each returns how many weights it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
template <class Weight>
std::size_t reveal(const float*, float, float, Weight*, std::size_t) {
  return 0;
}
#else
namespace hn = hwy::HWY_NAMESPACE;
using Floats = hn::ScalableTag<float>;

HWY_INLINE void storeWeights(hn::Vec<Floats> weights, float* out) {
  hn::StoreU(weights, Floats(), out);
}

HWY_INLINE void storeWeights(hn::Vec<Floats> weights, std::uint32_t* out) {
  const Floats d;
  const auto scaled = hn::Add(hn::Mul(weights, hn::Set(d, static_cast<float>(kMixOne))), hn::Set(d, 0.5F));
  const hn::RebindToUnsigned<Floats> du;
  hn::StoreU(hn::BitCast(du, hn::ConvertTo(hn::RebindToSigned<Floats>(), scaled)), du, out);
}

template <class Weight>
std::size_t reveal(const float* places, float edge, float steepness, Weight* out, std::size_t count) {
  const Floats d;
  const auto one = hn::Set(d, 1.0F);
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    const auto ahead = hn::Mul(hn::Sub(hn::Set(d, edge), hn::LoadU(d, places + i)), hn::Set(d, steepness));
    const auto below = hn::IfThenElse(hn::Lt(ahead, one), ahead, one);
    storeWeights(hn::IfThenElseZero(hn::Gt(ahead, hn::Zero(d)), below), out + i);
  }
  return whole;
}
#endif

std::size_t revealIntegers(const float* places, float edge, float steepness, std::uint32_t* out, std::size_t count) {
  return reveal(places, edge, steepness, out, count);
}
std::size_t revealFloats(const float* places, float edge, float steepness, float* out, std::size_t count) {
  return reveal(places, edge, steepness, out, count);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(revealIntegers);
HWY_EXPORT(revealFloats);

template <>
void revealRow(const float* places, float edge, float steepness, std::uint32_t* out, std::size_t count) {
  const std::size_t done =
      TCUsesScalarKernels() ? 0 : HWY_DYNAMIC_DISPATCH(revealIntegers)(places, edge, steepness, out, count);
  revealRowScalar(places + done, edge, steepness, out + done, count - done);
}

template <>
void revealRow(const float* places, float edge, float steepness, float* out, std::size_t count) {
  const std::size_t done =
      TCUsesScalarKernels() ? 0 : HWY_DYNAMIC_DISPATCH(revealFloats)(places, edge, steepness, out, count);
  revealRowScalar(places + done, edge, steepness, out + done, count - done);
}

}  // namespace vorto::effects
#endif
