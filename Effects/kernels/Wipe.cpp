// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Wipe.h"

#include "TarnCore/TCKernelTarget.h"

#include <cstdint>
#include <type_traits>

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
std::size_t wipeVectors(double, double, std::size_t, const Weight*, std::size_t, Weight*, std::size_t) {
  return 0;
}
#else
namespace hn = hwy::HWY_NAMESPACE;

template <class Weight>
std::size_t wipeVectors(double start, double step, std::size_t first, const Weight* values, std::size_t valueCount,
                        Weight* out, std::size_t count) {
  const hn::ScalableTag<double> d;
  const hn::Rebind<std::int32_t, decltype(d)> di;
  const hn::Rebind<Weight, decltype(d)> dw;
  const std::size_t lanes = hn::Lanes(d);
  const auto lane = hn::Iota(d, 0);
  const auto last = hn::Set(d, static_cast<double>(valueCount - 1));
  const std::size_t whole = count / lanes * lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    const auto pixel = hn::Add(hn::Set(d, static_cast<double>(first + i)), lane);
    const auto position = hn::Add(hn::Set(d, start), hn::Mul(pixel, hn::Set(d, step)));
    const auto clamped = hn::IfThenElseZero(hn::Gt(position, hn::Zero(d)), hn::Min(position, hn::Set(d, 1.0)));
    const auto index = hn::DemoteTo(di, hn::Add(hn::Mul(clamped, last), hn::Set(d, 0.5)));
    hn::StoreU(hn::GatherIndex(dw, values, index), dw, out + i);
  }
  return whole;
}
#endif

std::size_t wipeIntegers(double start, double step, std::size_t first, const std::uint32_t* values,
                         std::size_t valueCount, std::uint32_t* out, std::size_t count) {
  return wipeVectors(start, step, first, values, valueCount, out, count);
}

std::size_t wipeFloats(double start, double step, std::size_t first, const float* values, std::size_t valueCount,
                       float* out, std::size_t count) {
  return wipeVectors(start, step, first, values, valueCount, out, count);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(wipeIntegers);
HWY_EXPORT(wipeFloats);

template <class Weight>
void wipeRow(double start, double step, std::size_t first, const Weight* values, std::size_t valueCount, Weight* out,
             std::size_t count) {
  std::size_t done = 0;
  if (!TCUsesScalarKernels()) {
    if constexpr (std::is_same_v<Weight, float>) {
      done = HWY_DYNAMIC_DISPATCH(wipeFloats)(start, step, first, values, valueCount, out, count);
    } else {
      done = HWY_DYNAMIC_DISPATCH(wipeIntegers)(start, step, first, values, valueCount, out, count);
    }
  }
  wipeRowScalar(start, step, first + done, values, valueCount, out + done, count - done);
}

template void wipeRow(double, double, std::size_t, const std::uint32_t*, std::size_t, std::uint32_t*, std::size_t);
template void wipeRow(double, double, std::size_t, const float*, std::size_t, float*, std::size_t);

}  // namespace vorto::effects
#endif
