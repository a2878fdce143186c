#include "TarnCore/kernels/Memory.h"

#include "TarnCore/kernels/Dispatch.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "TarnCore/kernels/Memory.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/cache_control.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
using D = hn::ScalableTag<std::uint8_t>;

void copy(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes, bool streamed) {
  const D d;
  const std::size_t lanes = hn::Lanes(d);
  std::size_t i = 0;
  if (streamed) {
    const std::size_t head = (lanes - reinterpret_cast<std::uintptr_t>(destination) % lanes) % lanes;
    if (head < bytes) {
      copyBytesScalar(destination, source, head);
      for (i = head; i + lanes <= bytes; i += lanes) hn::Stream(hn::LoadU(d, source + i), d, destination + i);
      hwy::FlushStream();
    }
  }
  for (; i + lanes <= bytes; i += lanes) hn::StoreU(hn::LoadU(d, source + i), d, destination + i);
  copyBytesScalar(destination + i, source + i, bytes - i);
}

void swap(std::uint8_t* first, std::uint8_t* second, std::size_t bytes) {
  const D d;
  const std::size_t lanes = hn::Lanes(d);
  std::size_t i = 0;
  for (; i + lanes <= bytes; i += lanes) {
    const auto a = hn::LoadU(d, first + i);
    const auto b = hn::LoadU(d, second + i);
    hn::StoreU(b, d, first + i);
    hn::StoreU(a, d, second + i);
  }
  swapBytesScalar(first + i, second + i, bytes - i);
}

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::kernels {

HWY_EXPORT(copy);
HWY_EXPORT(swap);

void copyBytes(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes, bool streamed) {
  if (destination == source) return;
  if (useScalar() || overlapsShifted(destination, bytes, source, bytes)) {
    return copyBytesScalar(destination, source, bytes);
  }
  HWY_DYNAMIC_DISPATCH(copy)(destination, source, bytes, streamed);
}

void swapBytes(std::uint8_t* first, std::uint8_t* second, std::size_t bytes) {
  if (useScalar()) return swapBytesScalar(first, second, bytes);
  HWY_DYNAMIC_DISPATCH(swap)(first, second, bytes);
}

}  // namespace vorto::kernels
#endif
