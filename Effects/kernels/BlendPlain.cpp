// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/Arithmetic.h"
#include "Effects/kernels/BlendVectors.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/BlendPlain.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/BlendLoops-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
using PlainLoops = NoLoops;
#else
// The three products of bytes, rounded once over 255 and stopped at 255, in the high byte. Sums stop at 65535 on the
// way: what lies above 255 x 255 gives 255 whatever it is.
HWY_INLINE hn::Vec<Words> multipliedBytes(hn::Vec<Words> behind, hn::Vec<Words> front, hn::Vec<Words> behindUncovered,
                                          hn::Vec<Words> frontUncovered) {
  const Words d;
  const auto both = hn::SaturatedAdd(hn::Mul(front, behind), hn::Mul(front, behindUncovered));
  const auto sum = hn::Min(hn::SaturatedAdd(both, hn::Mul(behind, frontUncovered)), hn::Set(d, 255 * 255));
  const auto n = hn::Add(sum, hn::Set(d, 127));
  return hn::Add(hn::Add(n, hn::Set(d, 1)), hn::ShiftRight<8>(n));
}

// A sum of products of words in two halves; `high` stops at 65535, for the result does as well.
struct WideSum {
  hn::Vec<Words> high;
  hn::Vec<Words> low;

  HWY_INLINE void addProduct(hn::Vec<Words> a, hn::Vec<Words> b) {
    const auto addedLow = hn::Mul(a, b);
    low = hn::Add(low, addedLow);
    high = hn::SaturatedAdd(hn::SaturatedAdd(high, hn::MulHigh(a, b)), hn::ShiftRight<15>(carryOf(low, addedLow)));
  }
};

struct PlainVectors {
  template <class Layout>
  static HWY_INLINE hn::Vec<Bytes> blended(OverMode, Bytes, hn::Vec<Bytes> behind, hn::Vec<Bytes> front) {
    const auto uncovered = hn::Xor(alphaOfBytes<Layout::kAlpha>(front), hn::Set(Words(), 0x00FF));
    const auto even = productOfBytes(evenBytes(behind), uncovered);
    const auto odd = productOfBytes(oddBytes(behind), uncovered);
    return hn::SaturatedAdd(front, joinedHighBytes(even, odd));
  }

  template <class>
  static HWY_INLINE hn::Vec<Words> blended(OverMode, Words, hn::Vec<Words> behind, hn::Vec<Words> front) {
    return hn::SaturatedAdd(front, productOfWords(behind, hn::Not(alphaOfWords(front))));
  }

  template <class>
  static HWY_INLINE hn::Vec<Floats> blended(OverMode, Floats d, hn::Vec<Floats> behind, hn::Vec<Floats> front) {
    return hn::Add(front, hn::Mul(behind, hn::Sub(hn::Set(d, 1.0F), hn::Broadcast<3>(front))));
  }

  template <class, class D>
  static HWY_INLINE hn::Vec<D> blended(PlusMode, D, hn::Vec<D> behind, hn::Vec<D> front) {
    return hn::SaturatedAdd(front, behind);
  }

  template <class>
  static HWY_INLINE hn::Vec<Floats> blended(PlusMode, Floats, hn::Vec<Floats> behind, hn::Vec<Floats> front) {
    return hn::Add(front, behind);
  }

  template <class Layout>
  static HWY_INLINE hn::Vec<Bytes> blended(MultiplyMode, Bytes, hn::Vec<Bytes> behind, hn::Vec<Bytes> front) {
    const auto full = hn::Set(Words(), 0x00FF);
    const auto behindUncovered = hn::Xor(alphaOfBytes<Layout::kAlpha>(behind), full);
    const auto frontUncovered = hn::Xor(alphaOfBytes<Layout::kAlpha>(front), full);
    const auto even = multipliedBytes(evenBytes(behind), evenBytes(front), behindUncovered, frontUncovered);
    const auto odd = multipliedBytes(oddBytes(behind), oddBytes(front), behindUncovered, frontUncovered);
    return joinedHighBytes(even, odd);
  }

  // The three products, rounded once over 65535. 65536 h + l is 65535 h + (h + l): the quotient is h, and 1 more when h
  // + l reaches 65535.
  template <class>
  static HWY_INLINE hn::Vec<Words> blended(MultiplyMode, Words d, hn::Vec<Words> behind, hn::Vec<Words> front) {
    WideSum sum{hn::Zero(d), hn::Set(d, 32767)};
    sum.addProduct(front, behind);
    sum.addProduct(front, hn::Not(alphaOfWords(behind)));
    sum.addProduct(behind, hn::Not(alphaOfWords(front)));
    const auto reaches = hn::Not(hn::VecFromMask(d, hn::Lt(sum.low, hn::Not(sum.high))));
    return hn::SaturatedAdd(sum.high, hn::ShiftRight<15>(reaches));
  }

  template <class>
  static HWY_INLINE hn::Vec<Floats> blended(MultiplyMode, Floats d, hn::Vec<Floats> behind, hn::Vec<Floats> front) {
    const auto one = hn::Set(d, 1.0F);
    const auto frontShown = hn::Mul(front, hn::Sub(one, hn::Broadcast<3>(behind)));
    const auto behindShown = hn::Mul(behind, hn::Sub(one, hn::Broadcast<3>(front)));
    return hn::Add(hn::Add(hn::Mul(front, behind), frontShown), behindShown);
  }

  // A whole number less a product rounded is the rounded whole, since no product lies halfway.
  template <class>
  static HWY_INLINE hn::Vec<Bytes> blended(ScreenMode, Bytes, hn::Vec<Bytes> behind, hn::Vec<Bytes> front) {
    const auto even = productOfBytes(evenBytes(behind), evenBytes(front));
    const auto odd = productOfBytes(oddBytes(behind), oddBytes(front));
    return hn::Sub(hn::Add(front, behind), joinedHighBytes(even, odd));
  }

  template <class>
  static HWY_INLINE hn::Vec<Words> blended(ScreenMode, Words, hn::Vec<Words> behind, hn::Vec<Words> front) {
    return hn::Sub(hn::Add(front, behind), productOfWords(behind, front));
  }

  template <class>
  static HWY_INLINE hn::Vec<Floats> blended(ScreenMode, Floats d, hn::Vec<Floats> behind, hn::Vec<Floats> front) {
    return hn::Add(front, hn::Mul(behind, hn::Sub(hn::Set(d, 1.0F), front)));
  }
};

// Integer pixels that are opaque take short ways: a foreground hides what it is laid over, which is not even read, and
// of the multiplied images' products one is left.
template <class Layout, class D>
HWY_INLINE bool areOpaque(D, hn::Vec<D> pixels) {
  using Pixel = std::conditional_t<sizeof(hn::TFromD<D>) == 1, std::uint32_t, std::uint64_t>;
  const hn::Repartition<Pixel, D> d;
  const auto alpha = hn::Set(d, Pixel{kFull<hn::TFromD<D> >} << (8 * sizeof(hn::TFromD<D>) * Layout::kAlpha));
  return hn::AllTrue(d, hn::Eq(hn::And(hn::BitCast(d, pixels), alpha), alpha));
}

HWY_INLINE hn::Vec<Bytes> productOf(Bytes, hn::Vec<Bytes> a, hn::Vec<Bytes> b) {
  return joinedHighBytes(productOfBytes(evenBytes(a), evenBytes(b)), productOfBytes(oddBytes(a), oddBytes(b)));
}
HWY_INLINE hn::Vec<Words> productOf(Words, hn::Vec<Words> a, hn::Vec<Words> b) {
  return productOfWords(a, b);
}

struct PlainLoops {
  template <class Mode, class Layout, class Channel = typename Layout::Channel>
  static std::size_t row(const Channel* background, const Channel* foreground, Channel* out, std::size_t count) {
    const hn::ScalableTag<Channel> d;
    if constexpr (std::is_integral_v<Channel> && std::is_same_v<Mode, OverMode>) {
      return storePixels(d, out, count, [=](std::size_t i) HWY_ATTR {
        const auto front = hn::LoadU(d, foreground + i);
        if (areOpaque<Layout>(d, front)) return front;
        return PlainVectors::blended<Layout>(OverMode(), d, hn::LoadU(d, background + i), front);
      });
    } else if constexpr (std::is_integral_v<Channel> && std::is_same_v<Mode, MultiplyMode>) {
      return storePixels(d, out, count, [=](std::size_t i) HWY_ATTR {
        expectPixels(background + i);
        expectPixels(foreground + i);
        const auto behind = hn::LoadU(d, background + i);
        const auto front = hn::LoadU(d, foreground + i);
        if (areOpaque<Layout>(d, hn::And(front, behind))) return productOf(d, behind, front);
        return PlainVectors::blended<Layout>(MultiplyMode(), d, behind, front);
      });
    } else {
      return InterleavedLoops<PlainVectors>::row<Mode, Layout>(background, foreground, out, count);
    }
  }
};
#endif

BlendVectors plainVectors(std::size_t mode) {
  return vectorsOf<PlainLoops>(PlainModes(), mode);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(plainVectors);

BlendVectors blendVectors(PlainModes, std::size_t mode) {
  return HWY_DYNAMIC_DISPATCH(plainVectors)(mode);
}

}  // namespace vorto::effects
#endif
