// SPDX-License-Identifier: BSD-3-Clause
// What the kernels of blend modes have in common. Included once for each target, hence no guard but this one.
#if defined(VORTO_BLEND_LOOPS_TARGET) == defined(HWY_TARGET_TOGGLE)
#ifdef VORTO_BLEND_LOOPS_TARGET
#undef VORTO_BLEND_LOOPS_TARGET
#else
#define VORTO_BLEND_LOOPS_TARGET
#endif

#include "Effects/kernels/BlendVectors.h"
#include "Effects/kernels/Pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

// Loops::row<Mode, Layout> is a BlendLoop.
template <class Loops, class... Modes>
BlendVectors vectorsOf(ModeList<Modes...>, std::size_t mode) {
  static constexpr BlendVectors kVectors[] = {{&Loops::template row<Modes, RGBA8>, &Loops::template row<Modes, ARGB8>,
                                               &Loops::template row<Modes, RGBA16>,
                                               &Loops::template row<Modes, RGBAFloat>}...};
  return kVectors[mode];
}

// Where vectors have one lane only.
struct NoLoops {
  template <class Mode, class Layout, class Channel = typename Layout::Channel>
  static std::size_t row(const Channel*, const Channel*, Channel*, std::size_t) {
    return 0;
  }
};

#if HWY_TARGET != HWY_SCALAR
// Asks for the line that will be read in a while: processors stop doing so by themselves when much is computed between
// two lines.
HWY_INLINE void expectReadAhead(const void* place) {
  constexpr std::uintptr_t kDistance = 1024;
  hwy::Prefetch(reinterpret_cast<const char*>(reinterpret_cast<std::uintptr_t>(place) + kDistance));
}

// On vectors of interleaved channels: Vectors::blended<Layout>(mode, d, behind, front).
template <class Vectors>
struct InterleavedLoops {
  template <class Mode, class Layout, class Channel = typename Layout::Channel>
  static std::size_t row(const Channel* background, const Channel* foreground, Channel* out, std::size_t count) {
    const hn::ScalableTag<Channel> d;
    const std::size_t whole = wholeVectors(d, count);
    for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
      expectReadAhead(background + i);
      expectReadAhead(foreground + i);
      const auto behind = hn::LoadU(d, background + i);
      const auto front = hn::LoadU(d, foreground + i);
      storeNext<false>(Vectors::template blended<Layout>(Mode(), d, behind, front), d, out + i);
    }
    return whole / 4;
  }
};

// Of two equal floats the second, as in the definitions, whatever their signs.
template <class V>
HWY_INLINE V lesserOf(Floats, V a, V b) {
  return hn::IfThenElse(hn::Lt(a, b), a, b);
}
template <class V>
HWY_INLINE V greaterOf(Floats, V a, V b) {
  return hn::IfThenElse(hn::Lt(b, a), a, b);
}
template <class D, class V>
HWY_INLINE V lesserOf(D, V a, V b) {
  return hn::Min(a, b);
}
template <class D, class V>
HWY_INLINE V greaterOf(D, V a, V b) {
  return hn::Max(a, b);
}
#endif

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
