// SPDX-License-Identifier: BSD-3-Clause
// Vectors of pixels as four vectors, one of each channel, in the units of their channels. Included once for
// each target, hence no guard but this one.
#if defined(VORTO_PLANAR_PIXELS_TARGET) == defined(HWY_TARGET_TOGGLE)
#ifdef VORTO_PLANAR_PIXELS_TARGET
#undef VORTO_PLANAR_PIXELS_TARGET
#else
#define VORTO_PLANAR_PIXELS_TARGET
#endif

#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/FloatPixels.h"
#include "Effects/kernels/Pixels-inl.h"

#if HWY_TARGET != HWY_SCALAR
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

// The channels of pixels of integers, as many as a vector has lanes of 32 bits. Those of words stand in an order of
// their own, which storeChannels() knows.
struct Channels {
  hn::Vec<Wides> red, green, blue, alpha;
};

template <class Layout>
HWY_INLINE Channels loadChannels(const std::uint8_t* in) {
  expectPixels(in);
  const auto v = hn::BitCast(Wides(), hn::LoadU(Bytes(), in));
  return {byteOf<Layout::kRed>(v), byteOf<Layout::kGreen>(v), byteOf<Layout::kBlue>(v), byteOf<Layout::kAlpha>(v)};
}

template <class>
HWY_INLINE Channels loadChannels(const std::uint16_t* in) {
  const Wides d;
  const Longs dl;
  expectPixels(in);
  const auto first = hn::LoadU(Words(), in);
  const auto second = hn::LoadU(Words(), in + hn::Lanes(Words()));
  const auto secondUp = hn::BitCast(d, hn::ShiftLeft<32>(hn::BitCast(dl, second)));
  const auto firstDown = hn::BitCast(d, hn::ShiftRight<32>(hn::BitCast(dl, first)));
  const auto low = hn::OddEven(secondUp, hn::BitCast(d, first));
  const auto high = hn::OddEven(hn::BitCast(d, second), firstDown);
  const auto word = hn::Set(d, 0xFFFF);
  return {hn::And(low, word), hn::ShiftRight<16>(low), hn::And(high, word), hn::ShiftRight<16>(high)};
}

template <class Layout>
HWY_INLINE void storeChannels(const Channels& of, std::uint8_t* out) {
  const auto ends = hn::Or(hn::ShiftLeft<8 * Layout::kRed>(of.red), hn::ShiftLeft<8 * Layout::kGreen>(of.green));
  const auto rest = hn::Or(hn::ShiftLeft<8 * Layout::kBlue>(of.blue), hn::ShiftLeft<8 * Layout::kAlpha>(of.alpha));
  storeNext<false>(hn::BitCast(Bytes(), hn::Or(ends, rest)), Bytes(), out);
}

template <class>
HWY_INLINE void storeChannels(const Channels& of, std::uint16_t* out) {
  const Wides d;
  const Longs dl;
  const auto low = hn::Or(of.red, hn::ShiftLeft<16>(of.green));
  const auto high = hn::Or(of.blue, hn::ShiftLeft<16>(of.alpha));
  const auto highUp = hn::BitCast(d, hn::ShiftLeft<32>(hn::BitCast(dl, high)));
  const auto lowDown = hn::BitCast(d, hn::ShiftRight<32>(hn::BitCast(dl, low)));
  storeNext<false>(hn::BitCast(Words(), hn::OddEven(highUp, low)), Words(), out);
  storeNext<false>(hn::BitCast(Words(), hn::OddEven(high, lowDown)), Words(), out + hn::Lanes(Words()));
}

HWY_INLINE hn::Vec<Floats> realOf(hn::Vec<Wides> v) {
  return hn::ConvertTo(Floats(), hn::BitCast(hn::RebindToSigned<Floats>(), v));
}

// A byte of each pixel.
template <int index>
HWY_INLINE hn::Vec<Floats> byteAsFloat(hn::Vec<Wides> pixels) {
  return realOf(byteOf<index>(pixels));
}

// A value of each pixel, in the pixels' own order.
template <class Layout>
HWY_INLINE hn::Vec<Floats> inOrder(hn::Vec<Floats> v) {
  if constexpr (!std::is_same_v<Layout, RGBA16>) return v;
  const Floats d;
  return hn::ConcatLowerLower(d, hn::ConcatOdd(d, v, v), hn::ConcatEven(d, v, v));
}

struct Planar {
  hn::Vec<Floats> red, green, blue, alpha;
};

template <class Layout>
HWY_INLINE Planar loadPlanar(const typename Layout::Channel* in) {
  Planar p;
  if constexpr (std::is_same_v<Layout, RGBAFloat>) {
    for (std::size_t i = 0; i < 4; ++i) expectPixels(in + i * hn::Lanes(Floats()));
    hn::LoadInterleaved4(Floats(), in, p.red, p.green, p.blue, p.alpha);
  } else {
    const Channels c = loadChannels<Layout>(in);
    p = {realOf(c.red), realOf(c.green), realOf(c.blue), realOf(c.alpha)};
  }
  return p;
}

// As storedChannel() of FloatPixels.h.
template <class Layout>
HWY_INLINE void storePlanar(const Planar& p, typename Layout::Channel* out) {
  const Floats d;
  if constexpr (std::is_same_v<Layout, RGBAFloat>) {
    for (std::size_t i = 0; i < 4; ++i) expectWriteBehind(out + i * hn::Lanes(d));
    hn::StoreInterleaved4(p.red, p.green, p.blue, p.alpha, d, out);
  } else {
    constexpr float full = fullOf<typename Layout::Channel>();
    const auto zero = hn::Zero(d);
    const auto most = hn::Min(hn::Max(p.alpha, zero), hn::Set(d, full));
    const auto rounded = [&](hn::Vec<Floats> v) HWY_ATTR {
      const auto limited = hn::Add(hn::Min(hn::Max(v, zero), most), hn::Set(d, 0.5F));
      return hn::BitCast(Wides(), hn::ConvertTo(hn::RebindToSigned<Floats>(), limited));
    };
    storeChannels<Layout>({rounded(p.red), rounded(p.green), rounded(p.blue), rounded(p.alpha)}, out);
  }
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
#endif
