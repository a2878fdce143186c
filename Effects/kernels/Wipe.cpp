// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Wipe.h"

#include "TarnCore/TCKernelTarget.h"

#include <cstdint>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Wipe.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

// Each returns how many pixels it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
template <class Weight>
std::size_t wipeVectors(double, double, const Weight*, std::size_t, Weight*, std::size_t) {
  return 0;
}
#else
namespace hn = hwy::HWY_NAMESPACE;

template <class Weight>
std::size_t wipeVectors(double start, double step, const Weight* values, std::size_t steps, Weight* out,
                        std::size_t count) {
  const hn::ScalableTag<double> d;
  const hn::Rebind<std::int32_t, decltype(d)> di;
  const hn::Rebind<Weight, decltype(d)> dw;
  const std::size_t lanes = hn::Lanes(d);
  const auto lane = hn::Iota(d, 0);
  const auto last = hn::Set(d, static_cast<double>(steps - 1));
  const std::size_t whole = count / lanes * lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    const auto pixel = hn::Add(hn::Set(d, static_cast<double>(i)), lane);
    const auto position = hn::Add(hn::Set(d, start), hn::Mul(pixel, hn::Set(d, step)));
    const auto clamped = hn::IfThenElseZero(hn::Gt(position, hn::Zero(d)), hn::Min(position, hn::Set(d, 1.0)));
    const auto index = hn::DemoteTo(di, hn::Add(hn::Mul(clamped, last), hn::Set(d, 0.5)));
    hn::StoreU(hn::GatherIndex(dw, values, index), dw, out + i);
  }
  return whole;
}
#endif

std::size_t wipeIntegers(double start, double step, const std::uint32_t* values, std::size_t steps, std::uint32_t* out,
                         std::size_t count) {
  return wipeVectors(start, step, values, steps, out, count);
}

std::size_t wipeFloats(double start, double step, const float* values, std::size_t steps, float* out,
                       std::size_t count) {
  return wipeVectors(start, step, values, steps, out, count);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(wipeIntegers);
HWY_EXPORT(wipeFloats);

template <>
void wipeRow(double start, double step, const std::uint32_t* values, std::size_t steps, std::uint32_t* out,
             std::size_t count) {
  const std::size_t done =
      TCUsesScalarKernels() ? 0 : HWY_DYNAMIC_DISPATCH(wipeIntegers)(start, step, values, steps, out, count);
  wipeRowScalar(start, step, values, steps, out, done, count);
}

template <>
void wipeRow(double start, double step, const float* values, std::size_t steps, float* out, std::size_t count) {
  const std::size_t done =
      TCUsesScalarKernels() ? 0 : HWY_DYNAMIC_DISPATCH(wipeFloats)(start, step, values, steps, out, count);
  wipeRowScalar(start, step, values, steps, out, done, count);
}

}  // namespace vorto::effects
#endif
