// SPDX-License-Identifier: BSD-3-Clause
// Blend modes that are computed in floats, a vector for each channel of the pixels. Included once for each target,
// hence no guard but this one.
#if defined(VORTO_BLEND_PLANES_TARGET) == defined(HWY_TARGET_TOGGLE)
#ifdef VORTO_BLEND_PLANES_TARGET
#undef VORTO_BLEND_PLANES_TARGET
#else
#define VORTO_BLEND_PLANES_TARGET
#endif

#include "Effects/kernels/BlendLoops-inl.h"
#include "Effects/kernels/PlanarPixels-inl.h"

#if HWY_TARGET != HWY_SCALAR
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

using Real = hn::Vec<Floats>;

struct Color {
  Real red, green, blue;
};

// In the units of the depth.
struct PlanePair {
  Color behind, front;
  Real behindAlpha, frontAlpha;
};

// The color, no more than alpha.
HWY_INLINE Color colorOf(const Channels& of) {
  return {realOf(hn::Min(of.red, of.alpha)), realOf(hn::Min(of.green, of.alpha)), realOf(hn::Min(of.blue, of.alpha))};
}

// The rest of the formula, in the square of the depth's units.
HWY_INLINE Color sumOf(const PlanePair& of, const Color& both, Real one) {
  const auto behindUncovered = hn::Sub(one, of.behindAlpha);
  const auto frontUncovered = hn::Sub(one, of.frontAlpha);
  const auto sum = [&](Real shared, Real behind, Real front) HWY_ATTR {
    return hn::Add(hn::Add(shared, hn::Mul(front, behindUncovered)), hn::Mul(behind, frontUncovered));
  };
  return {sum(both.red, of.behind.red, of.front.red), sum(both.green, of.behind.green, of.front.green),
          sum(both.blue, of.behind.blue, of.front.blue)};
}

template <int bits>
HWY_INLINE hn::Vec<Wides> alphaOver(hn::Vec<Wides> behind, hn::Vec<Wides> front) {
  const Wides d;
  const auto one = hn::Set(d, (1U << bits) - 1);
  const auto sum = hn::Add(hn::Mul(front, hn::Sub(one, behind)), hn::Mul(one, behind));
  const auto n = hn::Add(sum, hn::Set(d, ((1U << bits) - 1) / 2));
  return hn::ShiftRight<bits>(hn::Add(hn::Add(n, hn::Set(d, 1)), hn::ShiftRight<bits>(n)));
}

template <class Mode, class Layout>
HWY_INLINE void blendOnce(const float* background, const float* foreground, float* out) {
  const Floats d;
  const auto one = hn::Set(d, 1.0F);
  PlanePair of;
  for (std::size_t i = 0; i < 4; ++i) {
    expectPixels(background + i * hn::Lanes(d));
    expectPixels(foreground + i * hn::Lanes(d));
  }
  hn::LoadInterleaved4(d, background, of.behind.red, of.behind.green, of.behind.blue, of.behindAlpha);
  hn::LoadInterleaved4(d, foreground, of.front.red, of.front.green, of.front.blue, of.frontAlpha);
  const Color color = sumOf(of, both(Mode(), of), one);
  const auto frontShown = hn::Mul(of.frontAlpha, hn::Sub(one, of.behindAlpha));
  const auto behindShown = hn::Mul(of.behindAlpha, hn::Sub(one, of.frontAlpha));
  const auto alpha = hn::Add(hn::Add(hn::Mul(of.frontAlpha, of.behindAlpha), frontShown), behindShown);
  for (std::size_t i = 0; i < 4; ++i) expectWriteBehind(out + i * hn::Lanes(d));
  hn::StoreInterleaved4(color.red, color.green, color.blue, alpha, d, out);
}

template <class Mode, class Layout, class Integer>
HWY_INLINE void blendOnce(const Integer* background, const Integer* foreground, Integer* out) {
  constexpr int kBits = 8 * sizeof(Integer);
  constexpr auto kOne = static_cast<float>((1U << kBits) - 1);
  const Floats d;
  const Channels behind = loadChannels<Layout>(background);
  const Channels front = loadChannels<Layout>(foreground);
  const PlanePair of{colorOf(behind), colorOf(front), realOf(behind.alpha), realOf(front.alpha)};
  const Color color = sumOf(of, both(Mode(), of), hn::Set(d, kOne));
  const auto alpha = alphaOver<kBits>(behind.alpha, front.alpha);
  const auto rounded = [&](Real sum) HWY_ATTR {
    const auto value = hn::Add(hn::Mul(sum, hn::Set(d, 1 / kOne)), hn::Set(d, 0.5F));
    return hn::Min(hn::BitCast(Wides(), hn::ConvertTo(hn::RebindToSigned<Floats>(), value)), alpha);
  };
  storeChannels<Layout>({rounded(color.red), rounded(color.green), rounded(color.blue), alpha}, out);
}

struct PlaneLoops {
  template <class Mode, class Layout, class Channel = typename Layout::Channel>
  static std::size_t row(const Channel* background, const Channel* foreground, Channel* out, std::size_t count) {
    const std::size_t lanes = hn::Lanes(Floats());
    const std::size_t whole = count / lanes * lanes;
    for (std::size_t i = 0; i < 4 * whole; i += 4 * lanes) {
      blendOnce<Mode, Layout>(background + i, foreground + i, out + i);
    }
    return whole;
  }
};

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
#endif
