// SPDX-License-Identifier: BSD-3-Clause
// Powers of vectors. Included once for each target, hence no guard but this one.
#if defined(VORTO_POWER_TARGET) == defined(HWY_TARGET_TOGGLE)
#ifdef VORTO_POWER_TARGET
#undef VORTO_POWER_TARGET
#else
#define VORTO_POWER_TARGET
#endif

#include "Effects/kernels/Power.h"
#include "Effects/kernels/PowerSeries.h"

#include <hwy/highway.h>

#include <limits>

// Where vectors have one lane only, the definitions do everything.
#if HWY_TARGET != HWY_SCALAR
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using PowerDoubles = hn::ScalableTag<double>;
using PowerLongs = hn::RebindToUnsigned<PowerDoubles>;

template <std::size_t count>
HWY_INLINE hn::Vec<PowerDoubles> polynomial(const double (&coefficients)[count], hn::Vec<PowerDoubles> x) {
  const PowerDoubles d;
  auto sum = hn::Set(d, coefficients[0]);
  for (std::size_t i = 1; i < count; ++i) sum = hn::Add(hn::Mul(sum, x), hn::Set(d, coefficients[i]));
  return sum;
}

HWY_INLINE hn::Vec<PowerDoubles> logarithm(hn::Vec<PowerDoubles> x) {
  using namespace power;
  const PowerDoubles d;
  const PowerLongs dl;
  const auto magic = hn::Set(d, 0x1p52);
  const auto one = hn::Set(d, 1.0);
  const auto shifted = hn::Add(hn::BitCast(dl, x), hn::Set(dl, kToExponent));
  const auto biased = hn::BitCast(d, hn::Or(hn::ShiftRight<52>(shifted), hn::BitCast(dl, magic)));
  const auto exponent = hn::Sub(hn::Sub(biased, magic), hn::Set(d, 1023.0));
  const auto m = hn::BitCast(d, hn::Add(hn::And(shifted, hn::Set(dl, kMantissa)), hn::Set(dl, kRootOfHalfBits)));
  const auto s = hn::Div(hn::Sub(m, one), hn::Add(m, one));
  return hn::Add(exponent, hn::Mul(s, polynomial(kLogarithm, hn::Mul(s, s))));
}

HWY_INLINE hn::Vec<PowerDoubles> exponential(hn::Vec<PowerDoubles> y) {
  using namespace power;
  const PowerDoubles d;
  const PowerLongs dl;
  const auto rounder = hn::Set(d, kRounder);
  const auto clamped = hn::Max(hn::Min(y, hn::Set(d, kMostExponent)), hn::Set(d, -kMostExponent));
  const auto rounded = hn::Add(clamped, rounder);
  const auto f = hn::Sub(clamped, hn::Sub(rounded, rounder));
  const auto scale = hn::ShiftLeft<52>(hn::Add(hn::BitCast(dl, rounded), hn::Set(dl, 1023)));
  return hn::Mul(polynomial(kExponential, f), hn::BitCast(d, scale));
}

// Of floats of any number of lanes: those that are raised, and not left as they are.
template <class D>
HWY_INLINE hn::Mask<D> isRaised(D d, hn::Vec<D> value, double exponent) {
  const float most = exponent > 0 ? std::numeric_limits<float>::max() : std::numeric_limits<float>::infinity();
  return hn::And(hn::Gt(value, hn::Zero(d)), hn::Le(value, hn::Set(d, most)));
}

// powerRow()'s loop over whole vectors; returns how many values it raised.
HWY_INLINE std::size_t raiseWholeVectors(float* values, std::size_t count, double exponent) {
  const PowerDoubles d;
  const hn::Rebind<float, PowerDoubles> df;
  const auto e = hn::Set(d, exponent);
  const std::size_t whole = count / hn::Lanes(d) * hn::Lanes(d);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    const auto value = hn::LoadU(df, values + i);
    const auto power = hn::DemoteTo(df, exponential(hn::Mul(e, logarithm(hn::PromoteTo(d, value)))));
    hn::StoreU(hn::IfThenElse(isRaised(df, value, exponent), power, value), df, values + i);
  }
  return whole;
}

using PowerFloats = hn::ScalableTag<float>;

inline HWY_NOINLINE hn::Vec<PowerFloats> poweredExactly(hn::Vec<PowerFloats> values, double exponent) {
  const PowerFloats d;
  HWY_ALIGN float lanes[hn::MaxLanes(d)];
  hn::Store(values, d, lanes);
  raiseWholeVectors(lanes, hn::Lanes(d), exponent);
  return hn::Load(d, lanes);
}

HWY_INLINE hn::Vec<PowerFloats> powered(hn::Vec<PowerFloats> value, const PowerTable& table) {
  const PowerFloats d;
  const hn::RebindToUnsigned<PowerFloats> du;
  const hn::RebindToSigned<PowerFloats> di;
  constexpr int kBits = PowerTable::kEntryBits;
  const auto bits = hn::BitCast(du, value);
  const auto place = hn::ShiftRight<kBits>(bits);
  const auto index = hn::Min(hn::Sub(place, hn::Set(du, static_cast<std::uint32_t>(PowerTable::kFirst))),
                             hn::Set(du, static_cast<std::uint32_t>(PowerTable::kEntries)));
  const auto entry = hn::GatherIndex(d, table.entries.data(), hn::BitCast(di, index));
  const auto middle = hn::BitCast(d, hn::Or(hn::ShiftLeft<kBits>(place), hn::Set(du, 1U << (kBits - 1))));
  const auto r = hn::Div(hn::Sub(value, middle), middle);
  auto part = hn::Set(d, table.terms[3]);
  for (const int i : {2, 1, 0}) part = hn::Add(hn::Mul(part, r), hn::Set(d, table.terms[i]));
  const auto near = hn::Add(entry, hn::Mul(entry, hn::Mul(part, r)));
  const auto raised = isRaised(d, value, table.exponent);
  const auto isFar = hn::And(raised, hn::IsNaN(entry));
  if (HWY_UNLIKELY(!hn::AllFalse(d, isFar))) {
    const auto exact = poweredExactly(value, table.exponent);
    return hn::IfThenElse(raised, hn::IfThenElse(isFar, exact, near), value);
  }
  return hn::IfThenElse(raised, near, value);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
#endif
