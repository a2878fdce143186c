// SPDX-License-Identifier: BSD-3-Clause
// Vectors of pixels as four vectors of floats, one of each channel, in the units of their channels. Included once for
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

struct Planar {
  hn::Vec<Floats> red, green, blue, alpha;
};

// A byte of each pixel.
template <int index>
HWY_INLINE hn::Vec<Floats> byteAsFloat(hn::Vec<Wides> pixels) {
  return hn::ConvertTo(Floats(), hn::BitCast(hn::RebindToSigned<Floats>(), byteOf<index>(pixels)));
}

// As many pixels as a vector has floats.
template <class Layout>
HWY_INLINE Planar loadPlanar(const typename Layout::Channel* in) {
  const Floats d;
  const hn::RebindToSigned<Floats> di;
  Planar p;
  if constexpr (std::is_same_v<Layout, RGBAFloat>) {
    hn::LoadInterleaved4(d, in, p.red, p.green, p.blue, p.alpha);
  } else if constexpr (std::is_same_v<Layout, RGBA16>) {
    const hn::Rebind<std::uint16_t, Floats> dw;
    hn::Vec<decltype(dw)> red, green, blue, alpha;
    hn::LoadInterleaved4(dw, in, red, green, blue, alpha);
    p = {hn::ConvertTo(d, hn::PromoteTo(di, red)), hn::ConvertTo(d, hn::PromoteTo(di, green)),
         hn::ConvertTo(d, hn::PromoteTo(di, blue)), hn::ConvertTo(d, hn::PromoteTo(di, alpha))};
  } else {
    const auto pixels = hn::BitCast(Wides(), hn::LoadU(Bytes(), in));
    p = {byteAsFloat<Layout::kRed>(pixels), byteAsFloat<Layout::kGreen>(pixels), byteAsFloat<Layout::kBlue>(pixels),
         byteAsFloat<Layout::kAlpha>(pixels)};
  }
  return p;
}

// As storedChannel() of FloatPixels.h.
template <class Layout>
HWY_INLINE void storePlanar(const Planar& p, typename Layout::Channel* out) {
  using Channel = typename Layout::Channel;
  const Floats d;
  if constexpr (std::is_same_v<Layout, RGBAFloat>) {
    hn::StoreInterleaved4(p.red, p.green, p.blue, p.alpha, d, out);
  } else {
    constexpr float full = fullOf<Channel>();
    const hn::RebindToSigned<Floats> di;
    const auto zero = hn::Zero(d);
    const auto most = hn::Min(hn::Max(p.alpha, zero), hn::Set(d, full));
    const auto rounded = [&](hn::Vec<Floats> v) HWY_ATTR {
      return hn::ConvertTo(di, hn::Add(hn::Min(hn::Max(v, zero), most), hn::Set(d, 0.5F)));
    };
    const auto red = rounded(p.red), green = rounded(p.green), blue = rounded(p.blue), alpha = rounded(p.alpha);
    if constexpr (std::is_same_v<Layout, RGBA16>) {
      const hn::Rebind<std::uint16_t, Floats> dw;
      hn::StoreInterleaved4(hn::DemoteTo(dw, red), hn::DemoteTo(dw, green), hn::DemoteTo(dw, blue),
                            hn::DemoteTo(dw, alpha), dw, out);
    } else {
      const auto pixels =
          hn::Or(hn::Or(hn::ShiftLeft<8 * Layout::kRed>(red), hn::ShiftLeft<8 * Layout::kGreen>(green)),
                 hn::Or(hn::ShiftLeft<8 * Layout::kBlue>(blue), hn::ShiftLeft<8 * Layout::kAlpha>(alpha)));
      hn::StoreU(hn::BitCast(Bytes(), pixels), Bytes(), out);
    }
  }
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
#endif
