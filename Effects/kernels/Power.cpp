// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Power.h"

#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Power.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/Power-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

// Returns how many values it raised: whole vectors of them.
std::size_t powerVectors([[maybe_unused]] float* values, [[maybe_unused]] std::size_t count,
                         [[maybe_unused]] double exponent) {
#if HWY_TARGET == HWY_SCALAR
  return 0;
#else
  return raiseWholeVectors(values, count, exponent);
#endif
}

std::size_t powerDoubles([[maybe_unused]] double* values, [[maybe_unused]] std::size_t count,
                         [[maybe_unused]] double exponent) {
#if HWY_TARGET == HWY_SCALAR
  return 0;
#else
  const PowerDoubles d;
  const auto e = hn::Set(d, exponent);
  const std::size_t whole = count / hn::Lanes(d) * hn::Lanes(d);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    const auto value = hn::LoadU(d, values + i);
    const auto power = exponential(hn::Mul(e, logarithm(value)));
    hn::StoreU(hn::IfThenElse(hn::Gt(value, hn::Zero(d)), power, value), d, values + i);
  }
  return whole;
#endif
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(powerVectors);
HWY_EXPORT(powerDoubles);

void powerRow(float* values, std::size_t count, double exponent) {
  const std::size_t done = TCUsesScalarKernels() ? 0 : HWY_DYNAMIC_DISPATCH(powerVectors)(values, count, exponent);
  powerRowScalar(values + done, count - done, exponent);
}

void powerRow(double* values, std::size_t count, double exponent) {
  const std::size_t done = TCUsesScalarKernels() ? 0 : HWY_DYNAMIC_DISPATCH(powerDoubles)(values, count, exponent);
  powerRowScalar(values + done, count - done, exponent);
}

}  // namespace vorto::effects
#endif
