// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Paint.h"

#include "TarnCore/TCKernelTarget.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Paint.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/Pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

// Returns how many of the bytes it made: whole vectors, each of the 16 bytes of `block` over and over.
std::size_t paintBytes([[maybe_unused]] const std::uint8_t* block, [[maybe_unused]] std::uint8_t* out,
                       [[maybe_unused]] std::size_t bytes) {
#if HWY_TARGET == HWY_SCALAR
  return 0;
#else
  const Bytes d;
  const auto blocks = hn::LoadDup128(d, block);
  return 4 * storePixels(d, out, bytes / 4, [=](std::size_t) HWY_ATTR { return blocks; });
#endif
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(paintBytes);

// The pixels of all layouts are whole fractions of 16 bytes.
template <class Layout, class Channel>
void paintRow(const std::array<Channel, 4>& pixel, Channel* out, std::size_t count) {
  std::size_t done = 0;
  if (!TCUsesScalarKernels()) {
    alignas(16) Channel block[16 / sizeof(Channel)];
    for (std::size_t i = 0; i < std::size(block); ++i) block[i] = pixel[i % 4];
    const std::size_t bytes = HWY_DYNAMIC_DISPATCH(paintBytes)(
        reinterpret_cast<const std::uint8_t*>(block), reinterpret_cast<std::uint8_t*>(out), count * sizeof(pixel));
    done = bytes / sizeof(pixel);
  }
  for (std::size_t i = done; i < count; ++i) std::copy_n(pixel.data(), pixel.size(), out + 4 * i);
}

template void paintRow<RGBA8>(const std::array<std::uint8_t, 4>&, std::uint8_t*, std::size_t);
template void paintRow<ARGB8>(const std::array<std::uint8_t, 4>&, std::uint8_t*, std::size_t);
template void paintRow<RGBA16>(const std::array<std::uint16_t, 4>&, std::uint16_t*, std::size_t);
template void paintRow<RGBAFloat>(const std::array<float, 4>&, float*, std::size_t);

}  // namespace vorto::effects
#endif
