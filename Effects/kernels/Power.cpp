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

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(powerVectors);

void powerRow(float* values, std::size_t count, double exponent) {
  const std::size_t done = TCUsesScalarKernels() ? 0 : HWY_DYNAMIC_DISPATCH(powerVectors)(values, count, exponent);
  powerRowScalar(values + done, count - done, exponent);
}

}  // namespace vorto::effects
#endif
