// SPDX-License-Identifier: BSD-3-Clause
// Interleaved pixels as vectors of floats, in the units of their channels. Included once for each target, hence no
// guard but this one.
#if defined(VORTO_FLOAT_PIXELS_TARGET) == defined(HWY_TARGET_TOGGLE)
#ifdef VORTO_FLOAT_PIXELS_TARGET
#undef VORTO_FLOAT_PIXELS_TARGET
#else
#define VORTO_FLOAT_PIXELS_TARGET
#endif

#include "Effects/kernels/FloatPixels.h"
#include "Effects/kernels/Pixels-inl.h"

#if HWY_TARGET != HWY_SCALAR
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

template <class D>
HWY_INLINE hn::Vec<D> loadedFloats(D d, const float* channels) {
  return hn::LoadU(d, channels);
}
template <class D, class Channel>
HWY_INLINE hn::Vec<D> loadedFloats(D d, const Channel* channels) {
  return hn::ConvertTo(d, hn::PromoteTo(hn::RebindToSigned<D>(), hn::LoadU(hn::Rebind<Channel, D>(), channels)));
}

// As storedChannel() of FloatPixels.h.
template <class Layout, class D>
HWY_INLINE void storeFloats(hn::Vec<D> v, D d, typename Layout::Channel* out) {
  using Channel = typename Layout::Channel;
  if constexpr (std::is_same_v<Channel, float>) {
    hn::StoreU(v, d, out);
  } else {
    constexpr float full = fullOf<Channel>();
    const auto zero = hn::Zero(d);
    const auto most = hn::Min(hn::Max(hn::Broadcast<Layout::kAlpha>(v), zero), hn::Set(d, full));
    const auto rounded = hn::Add(hn::Min(hn::Max(v, zero), most), hn::Set(d, 0.5F));
    const hn::Rebind<Channel, D> to;
    hn::StoreU(hn::DemoteTo(to, hn::ConvertTo(hn::RebindToSigned<D>(), rounded)), to, out);
  }
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
#endif
