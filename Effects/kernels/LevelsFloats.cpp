// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/LevelsFloats.h"

#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/LevelsFloats.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/PlanarPixels-inl.h"
#include "Effects/kernels/Power-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

// Returns how many pixels it made: whole vectors of each channel.
#if HWY_TARGET == HWY_SCALAR
std::size_t levelsOfFloats(const float*, float*, std::size_t, const FloatLevels&) {
  return 0;
}
#else
HWY_INLINE hn::Vec<Floats> clipped(hn::Vec<Floats> v) {
  const Floats d;
  const auto one = hn::Set(d, 1.0F);
  return hn::IfThenElseZero(hn::Gt(v, hn::Zero(d)), hn::IfThenElse(hn::Lt(one, v), one, v));
}

template <bool clips>
HWY_INLINE hn::Vec<Floats> staged(hn::Vec<Floats> value, const FloatStage& stage) {
  if (stage.isNeutral) return value;
  const Floats d;
  const auto zero = hn::Zero(d);
  const auto one = hn::Set(d, 1.0F);
  const auto blackIn = hn::Set(d, stage.blackIn);
  auto v = stage.isStep ? hn::IfThenElse(hn::Lt(value, blackIn), zero, one)
                        : hn::Div(hn::Sub(value, blackIn), hn::Set(d, stage.inputSpan));
  if (clips) v = clipped(v);
  if (stage.isLimit) v = hn::IfThenElse(hn::And(hn::Gt(v, zero), hn::Lt(v, one)), zero, v);
  if (stage.power) v = powered(v, *stage.power);
  const auto blackOut = hn::Set(d, stage.blackOut);
  v = stage.outputSpan == 0 ? blackOut : hn::Add(blackOut, hn::Mul(v, hn::Set(d, stage.outputSpan)));
  return clips ? clipped(v) : v;
}

// The colors of pixels whose alpha is known, before and after.
struct Coverage {
  hn::Vec<Floats> divisor, newAlpha;
  hn::Mask<Floats> isKept;

  HWY_INLINE Coverage(hn::Vec<Floats> alpha, hn::Vec<Floats> made, bool keepsColor) : newAlpha(made) {
    const Floats d;
    const auto zero = hn::Zero(d);
    const auto covers = hn::Gt(alpha, zero);
    divisor = hn::IfThenElse(covers, alpha, hn::Set(d, 1.0F));
    const auto isEmpty = hn::Not(hn::Or(covers, hn::Gt(newAlpha, zero)));
    isKept = keepsColor ? hn::Or(isEmpty, hn::Eq(newAlpha, alpha)) : isEmpty;
  }

  HWY_INLINE hn::Vec<Floats> colorOf(hn::Vec<Floats> color, const FloatStage& common, const FloatStage& own) const {
    const auto straight = hn::Div(color, divisor);
    const auto made = hn::Mul(staged<false>(staged<false>(straight, common), own), newAlpha);
    return hn::IfThenElse(isKept, color, made);
  }
};

std::size_t levelsOfFloats(const float* in, float* out, std::size_t count, const FloatLevels& levels) {
  const Floats d;
  const bool keepsColor = levels.keepsColor();
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  for (std::size_t i = 0; i < 4 * whole; i += 4 * lanes) {
    const Planar p = loadPlanar<RGBAFloat>(in + i);
    const Coverage coverage(p.alpha, staged<true>(p.alpha, levels.alpha), keepsColor);
    storePlanar<RGBAFloat>(
        {coverage.colorOf(p.red, levels.common, levels.red), coverage.colorOf(p.green, levels.common, levels.green),
         coverage.colorOf(p.blue, levels.common, levels.blue), coverage.newAlpha},
        out + i);
  }
  return whole;
}
#endif

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(levelsOfFloats);

template <class Layout>
requires std::is_same_v<Layout, RGBAFloat>
void levelsRow(const float* in, float* out, std::size_t count, const FloatLevels& levels) {
  const std::size_t done = TCUsesScalarKernels() ? 0 : HWY_DYNAMIC_DISPATCH(levelsOfFloats)(in, out, count, levels);
  levelsRowScalar<RGBAFloat>(in + 4 * done, out + 4 * done, count - done, levels);
}

template void levelsRow<RGBAFloat>(const float*, float*, std::size_t, const FloatLevels&);

}  // namespace vorto::effects
#endif
