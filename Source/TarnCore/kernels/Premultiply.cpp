// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Premultiply.h"

#include "TarnCore/kernels/BytePatterns.h"
#include "TarnCore/kernels/Dispatch.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "TarnCore/kernels/Premultiply.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "TarnCore/kernels/Stores-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
void premultiplyRGBA(std::uint8_t* pixels, std::size_t count) {
  premultiplyRGBA8Scalar(pixels, count);
}
void premultiplyARGB(std::uint8_t* pixels, std::size_t count) {
  premultiplyARGB8Scalar(pixels, count);
}
#else
using Bytes = hn::ScalableTag<std::uint8_t>;
using Words = hn::Repartition<std::uint16_t, Bytes>;

// floor(c x a / 255) is ((256 c + 1) x 257 a) >> 24 for all bytes: the high half of a product of words, of which the
// high byte is the result.
HWY_INLINE hn::Vec<Words> product(hn::Vec<Words> colorTimes256Plus1, hn::Vec<Words> alphaTimes257) {
  return hn::MulHigh(colorTimes256Plus1, alphaTimes257);
}

// Even bytes are multiplied in one vector of words, odd bytes in another. `alphaTwice` brings a pixel's alpha to both
// bytes of its words, `oddColors` are the odd bytes that are colors, `alpha` the alpha bytes (of which none is in the
// product of even bytes when alpha is odd, and the other way round).
template <int alphaIndex>
std::size_t premultiplyVectors(std::uint8_t* pixels, std::size_t count) {
  const Bytes d;
  const Words dw;
  constexpr std::uint8_t a = alphaIndex;
  static constexpr BytePattern alphaTwice = BytePattern::ofOrder({a, a, a, a});
  const auto spread = hn::LoadDup128(d, alphaTwice.bytes);
  const auto one = hn::Set(dw, 1);
  const auto oddBytes = hn::Set(dw, 0xFF00);
  const hn::Repartition<std::uint32_t, Bytes> dp;
  const auto alphaMask = hn::BitCast(dw, hn::Set(dp, alphaIndex == 3 ? 0xFF000000u : 0x000000FFu));
  const auto oddColors = alphaIndex == 3 ? hn::BitCast(dw, hn::Set(dp, 0x0000FF00u)) : oddBytes;
  const auto evenColors = alphaIndex == 3 ? hn::Set(dw, 0x00FF) : hn::BitCast(dw, hn::Set(dp, 0x00FF0000u));

  const std::size_t step = hn::Lanes(d);
  const std::size_t whole = count * 4 / step * step;
  for (std::size_t i = 0; i < whole; i += step) {
    const auto bytes = hn::LoadU(d, pixels + i);
    const auto pixel = hn::BitCast(dw, bytes);
    const auto alpha = hn::BitCast(dw, hn::TableLookupBytes(bytes, spread));
    const auto odd = product(hn::OrAnd(one, pixel, oddBytes), alpha);
    auto even = hn::ShiftRight<8>(product(hn::Or(hn::ShiftLeft<8>(pixel), one), alpha));
    if constexpr (alphaIndex != 3) even = hn::And(even, evenColors);
    const auto colors = hn::OrAnd(even, odd, oddColors);
    storeNext<false>(hn::BitCast(d, hn::OrAnd(colors, pixel, alphaMask)), d, pixels + i);
  }
  return whole / 4;
}

void premultiplyRGBA(std::uint8_t* pixels, std::size_t count) {
  const std::size_t done = premultiplyVectors<3>(pixels, count);
  premultiplyRGBA8Scalar(pixels + 4 * done, count - done);
}

void premultiplyARGB(std::uint8_t* pixels, std::size_t count) {
  const std::size_t done = premultiplyVectors<0>(pixels, count);
  premultiplyARGB8Scalar(pixels + 4 * done, count - done);
}
#endif

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::kernels {

HWY_EXPORT(premultiplyRGBA);
HWY_EXPORT(premultiplyARGB);

void premultiplyRGBA8(std::uint8_t* pixels, std::size_t count) {
  if (useScalar()) return premultiplyRGBA8Scalar(pixels, count);
  HWY_DYNAMIC_DISPATCH(premultiplyRGBA)(pixels, count);
}

void premultiplyARGB8(std::uint8_t* pixels, std::size_t count) {
  if (useScalar()) return premultiplyARGB8Scalar(pixels, count);
  HWY_DYNAMIC_DISPATCH(premultiplyARGB)(pixels, count);
}

}  // namespace vorto::kernels
#endif
