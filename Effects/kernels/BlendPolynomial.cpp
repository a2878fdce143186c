// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/BlendVectors.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/BlendPolynomial.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/BlendLoops-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
using PolynomialLoops = NoLoops;
#else
// Channels of the background and the foreground, each under its alpha: floats, or integers in lanes that hold their
// products. Integers are at most their alpha, hence no sum below leaves its lane.
template <class D>
struct LanePair {
  hn::Vec<D> behind, front, behindAlpha, frontAlpha;
};

template <class D>
HWY_INLINE hn::Vec<D> both(DarkenMode, D d, const LanePair<D>& of) {
  return lesserOf(d, hn::Mul(of.front, of.behindAlpha), hn::Mul(of.behind, of.frontAlpha));
}

template <class D>
HWY_INLINE hn::Vec<D> both(LightenMode, D d, const LanePair<D>& of) {
  return greaterOf(d, hn::Mul(of.front, of.behindAlpha), hn::Mul(of.behind, of.frontAlpha));
}

template <class D>
HWY_INLINE hn::Vec<D> both(DifferenceMode, D d, const LanePair<D>& of) {
  const auto f = hn::Mul(of.front, of.behindAlpha);
  const auto b = hn::Mul(of.behind, of.frontAlpha);
  return hn::Sub(greaterOf(d, f, b), lesserOf(d, f, b));
}

template <class D>
HWY_INLINE hn::Vec<D> both(ExclusionMode, D, const LanePair<D>& of) {
  return hn::Add(hn::Mul(of.front, hn::Sub(of.behindAlpha, of.behind)),
                 hn::Mul(of.behind, hn::Sub(of.frontAlpha, of.front)));
}

// Multiplied up to the middle of `steering`, screened above.
template <class D>
HWY_INLINE hn::Vec<D> light(const LanePair<D>& of, hn::Vec<D> steering, hn::Vec<D> steeringAlpha) {
  const auto frontRest = hn::Sub(of.frontAlpha, of.front);
  const auto screened = hn::Sub(hn::Mul(of.frontAlpha, of.behindAlpha),
                                hn::Mul(hn::Add(frontRest, frontRest), hn::Sub(of.behindAlpha, of.behind)));
  const auto multiplied = hn::Mul(hn::Add(of.front, of.front), of.behind);
  return hn::IfThenElse(hn::Gt(hn::Add(steering, steering), steeringAlpha), screened, multiplied);
}

template <class D>
HWY_INLINE hn::Vec<D> both(HardLightMode, D, const LanePair<D>& of) {
  return light(of, of.front, of.frontAlpha);
}

template <class D>
HWY_INLINE hn::Vec<D> both(OverlayMode, D, const LanePair<D>& of) {
  return light(of, of.behind, of.behindAlpha);
}

// The whole formula, over `one`; alphaLanes has all bits set where alpha is.
template <class Mode, class D>
HWY_INLINE hn::Vec<D> blendedOver(D d, const LanePair<D>& of, hn::Vec<D> one, hn::Vec<D> alphaLanes) {
  const auto shared = hn::IfVecThenElse(alphaLanes, hn::Mul(of.frontAlpha, of.behindAlpha), both(Mode(), d, of));
  const auto frontShown = hn::Mul(of.front, hn::Sub(one, of.behindAlpha));
  const auto behindShown = hn::Mul(of.behind, hn::Sub(one, of.frontAlpha));
  return hn::Add(hn::Add(shared, frontShown), behindShown);
}

// Narrow channels in lanes of twice their width: those at even places in one vector, those at odd places in another.
template <class Narrow>
struct Halves {
  using Wide = hn::Repartition<hwy::MakeWide<hn::TFromD<Narrow> >, Narrow>;
  static constexpr int kBits = 8 * sizeof(hn::TFromD<Narrow>);
  static constexpr hn::TFromD<Wide> kOne = hwy::LimitsMax<hn::TFromD<Narrow> >();

  static HWY_INLINE hn::Vec<Wide> even(hn::Vec<Narrow> v) {
    return hn::And(hn::BitCast(Wide(), v), hn::Set(Wide(), kOne));
  }
  static HWY_INLINE hn::Vec<Wide> odd(hn::Vec<Narrow> v) { return hn::ShiftRight<kBits>(hn::BitCast(Wide(), v)); }

  // From the high halves.
  static HWY_INLINE hn::Vec<Narrow> joined(hn::Vec<Wide> even, hn::Vec<Wide> odd) {
    const auto high = hn::ShiftLeft<kBits>(hn::Set(Wide(), kOne));
    return hn::BitCast(Narrow(), hn::OrAnd(hn::ShiftRight<kBits>(even), odd, high));
  }

  // A sum of products, over kOne and rounded, in the high half.
  static HWY_INLINE hn::Vec<Wide> rounded(hn::Vec<Wide> sum) {
    const auto n = hn::Add(sum, hn::Set(Wide(), kOne / 2));
    return hn::Add(hn::Add(n, hn::Set(Wide(), 1)), hn::ShiftRight<kBits>(n));
  }

  // Bits set in the alpha of each pixel, among the channels at even or at odd places.
  template <class Layout, int parity>
  static HWY_INLINE hn::Vec<Wide> alphaLanes() {
    const hn::Repartition<hwy::MakeWide<hn::TFromD<Wide> >, Wide> pairs;
    constexpr auto low = static_cast<hn::TFromD<decltype(pairs)> >(hwy::LimitsMax<hn::TFromD<Wide> >());
    constexpr bool isHere = Layout::kAlpha % 2 == parity;
    return hn::BitCast(Wide(), hn::Set(pairs, !isHere ? 0 : Layout::kAlpha < 2 ? low : ~low));
  }
};

template <class Layout>
HWY_INLINE hn::Vec<Words> alphaOf(Bytes, hn::Vec<Bytes> v) {
  return alphaOfBytes<Layout::kAlpha>(v);
}

template <class>
HWY_INLINE hn::Vec<Wides> alphaOf(Words, hn::Vec<Words> v) {
  return hn::And(hn::BitCast(Wides(), alphaOfWords(v)), hn::Set(Wides(), 0xFFFF));
}

struct PolynomialVectors {
  template <class, class Mode>
  static HWY_INLINE hn::Vec<Floats> blended(Mode, Floats d, hn::Vec<Floats> behind, hn::Vec<Floats> front) {
    alignas(16) static constexpr std::uint32_t alphaLane[4] = {0, 0, 0, 0xFFFFFFFF};
    const LanePair<Floats> of{behind, front, hn::Broadcast<3>(behind), hn::Broadcast<3>(front)};
    return blendedOver<Mode>(d, of, hn::Set(d, 1.0F), hn::BitCast(d, hn::LoadDup128(Wides(), alphaLane)));
  }

  template <class Layout, class Mode, class D>
  static HWY_INLINE hn::Vec<D> blended(Mode, D d, hn::Vec<D> behind, hn::Vec<D> front) {
    using In = Halves<D>;
    using Wide = typename In::Wide;
    const auto one = hn::Set(Wide(), In::kOne);
    const auto behindAlpha = alphaOf<Layout>(d, behind);
    const auto frontAlpha = alphaOf<Layout>(d, front);
    const LanePair<Wide> even{hn::Min(In::even(behind), behindAlpha), hn::Min(In::even(front), frontAlpha), behindAlpha,
                              frontAlpha};
    const LanePair<Wide> odd{hn::Min(In::odd(behind), behindAlpha), hn::Min(In::odd(front), frontAlpha), behindAlpha,
                             frontAlpha};
    return In::joined(In::rounded(blendedOver<Mode>(Wide(), even, one, In::template alphaLanes<Layout, 0>())),
                      In::rounded(blendedOver<Mode>(Wide(), odd, one, In::template alphaLanes<Layout, 1>())));
  }
};

using PolynomialLoops = InterleavedLoops<PolynomialVectors>;
#endif

BlendVectors polynomialVectors(std::size_t mode) {
  return vectorsOf<PolynomialLoops>(PolynomialModes(), mode);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(polynomialVectors);

BlendVectors blendVectors(PolynomialModes, std::size_t mode) {
  return HWY_DYNAMIC_DISPATCH(polynomialVectors)(mode);
}

}  // namespace vorto::effects
#endif
