// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/BlendVectors.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/BlendNonSeparable.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/BlendPlanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
using PlaneLoops = NoLoops;
#else
HWY_INLINE Color scaled(const Color& c, Real factor) {
  return {hn::Mul(c.red, factor), hn::Mul(c.green, factor), hn::Mul(c.blue, factor)};
}

HWY_INLINE Real largest(const Color& c) {
  const Floats d;
  return greaterOf(d, greaterOf(d, c.red, c.green), c.blue);
}

HWY_INLINE Real smallest(const Color& c) {
  const Floats d;
  return lesserOf(d, lesserOf(d, c.red, c.green), c.blue);
}

HWY_INLINE Real luminosityOf(const Color& c) {
  const Floats d;
  return hn::Add(hn::Add(hn::Mul(hn::Set(d, 0.3F), c.red), hn::Mul(hn::Set(d, 0.59F), c.green)),
                 hn::Mul(hn::Set(d, 0.11F), c.blue));
}

HWY_INLINE Real saturationOf(const Color& c) {
  return hn::Sub(largest(c), smallest(c));
}

HWY_INLINE Color withSaturation(const Color& c, Real saturation) {
  const Floats d;
  const auto least = smallest(c);
  const auto range = hn::Sub(largest(c), least);
  const auto isColored = hn::Gt(range, hn::Set(d, kGrey));
  const auto stretch = hn::Div(saturation, range);
  const auto stretched = [&](Real v)
                             HWY_ATTR { return hn::IfThenElseZero(isColored, hn::Mul(hn::Sub(v, least), stretch)); };
  return {stretched(c.red), stretched(c.green), stretched(c.blue)};
}

HWY_INLINE Color withLuminosity(const Color& c, Real luminosity, Real limit) {
  const Floats d;
  const auto zero = hn::Zero(d);
  const auto one = hn::Set(d, 1.0F);
  const auto wanted = lesserOf(d, greaterOf(d, luminosity, zero), limit);
  const auto change = hn::Sub(luminosity, luminosityOf(c));
  const Color moved{hn::Add(c.red, change), hn::Add(c.green, change), hn::Add(c.blue, change)};
  const auto least = smallest(moved);
  const auto most = largest(moved);
  const auto isBelow = hn::Lt(least, zero);
  const auto isAbove = hn::Gt(most, limit);
  const auto room = hn::IfThenElse(isBelow, wanted, hn::Sub(limit, wanted));
  const auto reach = hn::IfThenElse(isBelow, hn::Sub(wanted, least), hn::Sub(most, wanted));
  const auto factor = hn::IfThenElse(hn::Or(isBelow, isAbove), hn::Div(room, reach), one);
  const auto clipped = [&](Real v) HWY_ATTR { return hn::Add(wanted, hn::Mul(hn::Sub(v, wanted), factor)); };
  return {clipped(moved.red), clipped(moved.green), clipped(moved.blue)};
}

HWY_INLINE Color both(HueMode, const PlanePair& of) {
  const Color behind = scaled(of.behind, of.frontAlpha);
  const Color saturated = withSaturation(of.front, saturationOf(behind));
  return withLuminosity(saturated, luminosityOf(behind), hn::Mul(of.frontAlpha, of.behindAlpha));
}

HWY_INLINE Color both(SaturationMode, const PlanePair& of) {
  const Color saturated = withSaturation(of.behind, saturationOf(scaled(of.front, of.behindAlpha)));
  return withLuminosity(saturated, luminosityOf(scaled(of.behind, of.frontAlpha)),
                        hn::Mul(of.frontAlpha, of.behindAlpha));
}

HWY_INLINE Color both(ColorMode, const PlanePair& of) {
  return withLuminosity(scaled(of.front, of.behindAlpha), luminosityOf(scaled(of.behind, of.frontAlpha)),
                        hn::Mul(of.frontAlpha, of.behindAlpha));
}

HWY_INLINE Color both(LuminosityMode, const PlanePair& of) {
  return withLuminosity(scaled(of.behind, of.frontAlpha), luminosityOf(scaled(of.front, of.behindAlpha)),
                        hn::Mul(of.frontAlpha, of.behindAlpha));
}
#endif

BlendVectors nonSeparableVectors(std::size_t mode) {
  return vectorsOf<PlaneLoops>(NonSeparableModes(), mode);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(nonSeparableVectors);

BlendVectors blendVectors(NonSeparableModes, std::size_t mode) {
  return HWY_DYNAMIC_DISPATCH(nonSeparableVectors)(mode);
}

}  // namespace vorto::effects
#endif
