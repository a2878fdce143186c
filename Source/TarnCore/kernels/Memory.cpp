// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Memory.h"

#include "TarnCore/kernels/Dispatch.h"

#include <atomic>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "TarnCore/kernels/Memory.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "TarnCore/kernels/Stores-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {
using D = hn::ScalableTag<std::uint8_t>;

template <bool streamed>
void copyVectors(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes) {
  const D d;
  const std::size_t lanes = hn::Lanes(d);
  std::size_t i = (lanes - reinterpret_cast<std::uintptr_t>(destination) % lanes) % lanes;
  if (i > bytes) i = bytes;
  copyBytesScalar(destination, source, i);
  for (; i + lanes <= bytes; i += lanes) storeNext<streamed>(hn::LoadU(d, source + i), d, destination + i);
  finishStores<streamed>();
  copyBytesScalar(destination + i, source + i, bytes - i);
}

void copy(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes, bool streamed) {
  if (streamed) return copyVectors<true>(destination, source, bytes);
  copyVectors<false>(destination, source, bytes);
}

void swap(std::uint8_t* first, std::uint8_t* second, std::size_t bytes) {
  const D d;
  const std::size_t lanes = hn::Lanes(d);
  std::size_t i = 0;
  for (; i + lanes <= bytes; i += lanes) {
    const auto a = hn::LoadU(d, first + i);
    const auto b = hn::LoadU(d, second + i);
    storeNext<false>(b, d, first + i);
    storeNext<false>(a, d, second + i);
  }
  swapBytesScalar(first + i, second + i, bytes - i);
}

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::kernels {

HWY_EXPORT(copy);
HWY_EXPORT(swap);

namespace {

std::atomic<Streaming> streaming = Streaming::ByMachine;

// Cores of these wait so long for each line that they write past the caches that reading it first is faster (measured:
// 15 % for copies, 40 % where more is written than read).
bool streamsSlowly() {
#if HWY_ARCH_X86
  return __builtin_cpu_is("skylake-avx512") || __builtin_cpu_is("cascadelake") || __builtin_cpu_is("cooperlake");
#else
  return false;
#endif
}

}  // namespace

bool isStreamed(std::size_t bytes) {
  constexpr std::size_t kBeyondCaches = std::size_t{24} << 20;  // measured: 18 MiB stay, 32 MiB do not
  switch (streaming.load(std::memory_order_relaxed)) {
    case Streaming::Never:
      return false;
    case Streaming::Always:
      return true;
    case Streaming::ByMachine:
      return bytes >= kBeyondCaches && !streamsSlowly();
  }
  return false;
}

void setStreaming(Streaming wanted) {
  streaming.store(wanted, std::memory_order_relaxed);
}

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
