// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/BlendVectors.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/BlendQuotient.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/BlendPlanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
using PlaneLoops = NoLoops;
#else
// A component of both, in the order of the definitions.
struct Component {
  Real behind, front, behindAlpha, frontAlpha;
};

HWY_INLINE Real both(ColorDodgeMode, const Component& of) {
  const Floats d;
  const auto full = hn::Mul(of.frontAlpha, of.behindAlpha);
  const auto rest = hn::Sub(of.frontAlpha, of.front);
  const auto dodged = hn::Div(hn::Mul(of.behind, hn::Mul(of.frontAlpha, of.frontAlpha)), rest);
  const auto between = hn::IfThenElse(hn::Ge(of.front, of.frontAlpha), full, lesserOf(d, dodged, full));
  return hn::IfThenElseZero(hn::Gt(of.behind, hn::Zero(d)), between);
}

HWY_INLINE Real both(ColorBurnMode, const Component& of) {
  const Floats d;
  const auto full = hn::Mul(of.frontAlpha, of.behindAlpha);
  const auto rest = hn::Sub(of.behindAlpha, of.behind);
  const auto burnt = hn::Div(hn::Mul(rest, hn::Mul(of.frontAlpha, of.frontAlpha)), of.front);
  const auto between = hn::IfThenElseZero(hn::Gt(of.front, hn::Zero(d)), hn::Sub(full, lesserOf(d, burnt, full)));
  return hn::IfThenElse(hn::Ge(of.behind, of.behindAlpha), full, between);
}

HWY_INLINE Real both(SoftLightMode, const Component& of) {
  const Floats d;
  const auto isCovered = hn::Gt(of.behindAlpha, hn::Zero(d));
  const auto b = hn::IfThenElseZero(isCovered, hn::Div(of.behind, of.behindAlpha));
  const auto ramp = hn::Sub(hn::Mul(hn::Set(d, 16.0F), b), hn::Set(d, 12.0F));
  const auto curve = hn::Mul(hn::Add(hn::Mul(ramp, b), hn::Set(d, 4.0F)), b);
  const auto raised = hn::IfThenElse(hn::Gt(b, hn::Set(d, 0.25F)), hn::Sqrt(b), curve);
  const auto strength = hn::Sub(hn::Add(of.front, of.front), of.frontAlpha);
  const auto isBright = hn::Gt(strength, hn::Zero(d));
  const auto way = hn::IfThenElse(isBright, hn::Sub(raised, b), hn::Sub(b, hn::Mul(b, b)));
  return hn::Add(hn::Mul(of.frontAlpha, of.behind), hn::Mul(hn::Mul(strength, of.behindAlpha), way));
}

template <class Mode>
HWY_INLINE Color both(Mode mode, const PlanePair& of) {
  return {both(mode, Component{of.behind.red, of.front.red, of.behindAlpha, of.frontAlpha}),
          both(mode, Component{of.behind.green, of.front.green, of.behindAlpha, of.frontAlpha}),
          both(mode, Component{of.behind.blue, of.front.blue, of.behindAlpha, of.frontAlpha})};
}
#endif

BlendVectors quotientVectors(std::size_t mode) {
  return vectorsOf<PlaneLoops>(QuotientModes(), mode);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(quotientVectors);

BlendVectors blendVectors(QuotientModes, std::size_t mode) {
  return HWY_DYNAMIC_DISPATCH(quotientVectors)(mode);
}

}  // namespace vorto::effects
#endif
