// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Power.h"

#include "Effects/kernels/PowerSeries.h"
#include "TarnCore/TCKernelTarget.h"

#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Power.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
std::size_t powerVectors(float*, std::size_t, double) {
  return 0;
}
#else
namespace hn = hwy::HWY_NAMESPACE;
using namespace power;

using Doubles = hn::ScalableTag<double>;
using Longs = hn::RebindToUnsigned<Doubles>;

template <std::size_t count>
HWY_INLINE hn::Vec<Doubles> polynomial(const double (&coefficients)[count], hn::Vec<Doubles> x) {
  const Doubles d;
  auto sum = hn::Set(d, coefficients[0]);
  for (std::size_t i = 1; i < count; ++i) sum = hn::Add(hn::Mul(sum, x), hn::Set(d, coefficients[i]));
  return sum;
}

HWY_INLINE hn::Vec<Doubles> logarithm(hn::Vec<Doubles> x) {
  const Doubles d;
  const Longs dl;
  const auto magic = hn::Set(d, 0x1p52);
  const auto one = hn::Set(d, 1.0);
  const auto shifted = hn::Add(hn::BitCast(dl, x), hn::Set(dl, kToExponent));
  const auto biased = hn::BitCast(d, hn::Or(hn::ShiftRight<52>(shifted), hn::BitCast(dl, magic)));
  const auto exponent = hn::Sub(hn::Sub(biased, magic), hn::Set(d, 1023.0));
  const auto m = hn::BitCast(d, hn::Add(hn::And(shifted, hn::Set(dl, kMantissa)), hn::Set(dl, kRootOfHalfBits)));
  const auto s = hn::Div(hn::Sub(m, one), hn::Add(m, one));
  return hn::Add(exponent, hn::Mul(s, polynomial(kLogarithm, hn::Mul(s, s))));
}

HWY_INLINE hn::Vec<Doubles> exponential(hn::Vec<Doubles> y) {
  const Doubles d;
  const Longs dl;
  const auto rounder = hn::Set(d, kRounder);
  const auto clamped = hn::Max(hn::Min(y, hn::Set(d, kMostExponent)), hn::Set(d, -kMostExponent));
  const auto rounded = hn::Add(clamped, rounder);
  const auto f = hn::Sub(clamped, hn::Sub(rounded, rounder));
  const auto scale = hn::ShiftLeft<52>(hn::Add(hn::BitCast(dl, rounded), hn::Set(dl, 1023)));
  return hn::Mul(polynomial(kExponential, f), hn::BitCast(d, scale));
}

// Returns how many values it raised: whole vectors of them.
std::size_t powerVectors(float* values, std::size_t count, double exponent) {
  const Doubles d;
  const hn::Rebind<float, Doubles> df;
  const auto e = hn::Set(d, exponent);
  const auto most =
      hn::Set(df, exponent > 0 ? std::numeric_limits<float>::max() : std::numeric_limits<float>::infinity());
  const std::size_t whole = count / hn::Lanes(d) * hn::Lanes(d);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    const auto value = hn::LoadU(df, values + i);
    const auto power = hn::DemoteTo(df, exponential(hn::Mul(e, logarithm(hn::PromoteTo(d, value)))));
    const auto isRaised = hn::And(hn::Gt(value, hn::Zero(df)), hn::Le(value, most));
    hn::StoreU(hn::IfThenElse(isRaised, power, value), df, values + i);
  }
  return whole;
}
#endif

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
