// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Between.h"

#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Between.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

// Returns how many values it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
std::size_t between(const float*, const std::int32_t*, const float*, float, float*, std::size_t) {
  return 0;
}
#else
namespace hn = hwy::HWY_NAMESPACE;
using Floats = hn::ScalableTag<float>;
using Signed = hn::RebindToSigned<Floats>;

std::size_t between(const float* samples, const std::int32_t* places, const float* weights, float strength,
                    float* values, std::size_t count) {
  const Floats d;
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    const auto place = hn::LoadU(Signed(), places + i);
    const auto left = hn::GatherIndex(d, samples, place);
    const auto right = hn::GatherIndex(d, samples + 1, place);
    const auto between = hn::Add(left, hn::Mul(hn::Sub(right, left), hn::LoadU(d, weights + i)));
    const auto sum = hn::Add(hn::LoadU(d, values + i), hn::Mul(hn::Set(d, strength), between));
    hn::StoreU(sum, d, values + i);
  }
  return whole;
}
#endif

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(between);

void addBetweenRow(const float* samples, const std::int32_t* places, const float* weights, float strength,
                   float* values, std::size_t count) {
  const std::size_t done =
      TCUsesScalarKernels() ? 0 : HWY_DYNAMIC_DISPATCH(between)(samples, places, weights, strength, values, count);
  addBetweenRowScalar(samples, places + done, weights + done, strength, values + done, count - done);
}

}  // namespace vorto::effects
#endif
