// SPDX-License-Identifier: BSD-3-Clause
// How kernels store what they have made, and ask for what they will need. Included once for each target, hence no guard
// but this one.
#if defined(VORTO_STORES_TARGET) == defined(HWY_TARGET_TOGGLE)
#ifdef VORTO_STORES_TARGET
#undef VORTO_STORES_TARGET
#else
#define VORTO_STORES_TARGET
#endif

#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Asks for the line that will be written in a while, so that a loop over a large image does not wait for every line
// that it is about to overwrite. Lines beyond the image's end are fetched too, which has no effect on them.
HWY_INLINE void expectWriteBehind(const void* place) {
  constexpr std::uintptr_t kDistance = 2048;
  const auto* const ahead = reinterpret_cast<const char*>(reinterpret_cast<std::uintptr_t>(place) + kDistance);
#if HWY_ARCH_X86
  asm volatile("prefetchw %0" : : "m"(*ahead));
#else
  __builtin_prefetch(ahead, 1);
#endif
}

// Asks for a line that will be read so many bytes later: where a row is read with gaps, rows are left out or a loop
// takes several lines at a time, the processor itself asks too late. What lies beyond the image is not touched by it.
template <std::uintptr_t distance>
HWY_INLINE void expectRead(const void* place) {
  __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(place) + distance));
}

// Stores in a loop over consecutive vectors: past the caches, for which the place must be aligned to the vector, or
// through them. Past the caches only whole vectors can be stored.
template <bool streamed, class D>
HWY_INLINE void storeNext(hn::Vec<D> v, D d, hn::TFromD<D>* HWY_RESTRICT place) {
  if constexpr (streamed) {
    static_assert(sizeof(hn::TFromD<D>) * hn::MaxLanes(d) == hn::MaxLanes(hn::ScalableTag<std::uint8_t>()));
    hn::Stream(v, d, place);
  } else {
    expectWriteBehind(place);
    hn::StoreU(v, d, place);
  }
}

template <bool streamed>
HWY_INLINE void finishStores() {
  if constexpr (streamed) hwy::FlushStream();
}

HWY_INLINE bool isAlignedToVector(const void* place) {
  return reinterpret_cast<std::uintptr_t>(place) % hn::Lanes(hn::ScalableTag<std::uint8_t>()) == 0;
}

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
