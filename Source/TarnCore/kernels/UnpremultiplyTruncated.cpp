// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/UnpremultiplyTruncated.h"

#include "TarnCore/kernels/Dispatch.h"
#include "TarnCore/kernels/Memory.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "TarnCore/kernels/UnpremultiplyTruncated.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "TarnCore/kernels/Rounding-inl.h"
#include "TarnCore/kernels/Stores-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {

#if !VORTO_BLOCK_OPS
void truncatedCopy(std::uint8_t* destination, const std::uint8_t* source, std::size_t count,
                   const Background& background) {
  unpremultiplyTruncatedScalar(destination, source, count, 4, background);
}
void truncatedInPlace(std::uint8_t* pixels, std::size_t count) {
  unpremultiplyTruncatedInPlaceScalar(pixels, count, 4);
}
#else
using Pixels8 = hn::Repartition<std::uint32_t, BlockBytes>;
using Floats = hn::Vec<BlockFloats>;

// 255 v, cut off; the limits are those of the bytes that it is packed into.
HWY_INLINE hn::Vec<BlockWide> stored(Floats v) {
  return truncateToIntegers(hn::Mul(v, hn::Set(BlockFloats(), 255.0f)));
}

// Pixels of alpha and these colors, all of which are 0 where alpha is, or the `transparent` ones there. Alpha survives
// being stored: 255 times every a is the byte that it was read from.
HWY_INLINE hn::Vec<Pixels8> pixelsOf(hn::Vec<Pixels8> in, Floats red, Floats green, Floats blue,
                                     hn::Vec<Pixels8> transparent) {
  const Pixels8 d;
  const auto alpha = hn::And(in, hn::Set(d, 255));
  const auto bytes = pixelBytesOf(hn::BitCast(BlockWide(), alpha), stored(red), stored(green), stored(blue));
  return hn::Or(hn::BitCast(d, bytes), hn::IfThenElseZero(hn::Eq(alpha, hn::Zero(d)), transparent));
}

// Opaque pixels come back as they are, so a vector of them takes the short way.
HWY_INLINE bool areOpaque(hn::Vec<Pixels8> in) {
  const Pixels8 d;
  const auto mask = hn::Set(d, 255);
  return hn::AllTrue(d, hn::Eq(hn::And(in, mask), mask));
}

std::uint32_t transparentPixel(const Background& background) {
  std::uint8_t p[4] = {0, 0, 0, 0};
  unpremultiplyTruncatedScalar(p, p, 1, 4, background);
  return p[0] | p[1] << 8 | p[2] << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

void truncatedCopy(std::uint8_t* destination, const std::uint8_t* source, std::size_t count,
                   const Background& background) {
  const Pixels8 d;
  const BlockFloats df;
  const auto transparent = hn::Set(d, transparentPixel(background));
  const auto one = hn::Set(df, 1.0f);
  const std::size_t lanes = hn::Lanes(d);
  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const auto in = hn::LoadU(d, reinterpret_cast<const std::uint32_t*>(source) + i);
    if (areOpaque(in)) {
      storeNext<false>(in, d, reinterpret_cast<std::uint32_t*>(destination) + i);
      continue;
    }
    const auto bytes = hn::BitCast(BlockBytes(), in);
    const auto a = normalizedAlpha<0>(bytes);
    const auto share = hn::Sub(one, a);
    const auto inverse = hn::Div(one, a);
    const auto straight = [&](Floats c, float b) {
      return quotient(hn::Sub(c, hn::Mul(hn::Set(df, b), share)), a, inverse);
    };
    const auto out = pixelsOf(in, straight(normalizedByte<1>(bytes), background.red),
                              straight(normalizedByte<2>(bytes), background.green),
                              straight(normalizedByte<3>(bytes), background.blue), transparent);
    storeNext<false>(out, d, reinterpret_cast<std::uint32_t*>(destination) + i);
  }
  unpremultiplyTruncatedScalar(destination + 4 * i, source + 4 * i, count - i, 4, background);
}

void truncatedInPlace(std::uint8_t* pixels, std::size_t count) {
  const Pixels8 d;
  auto* const words = reinterpret_cast<std::uint32_t*>(pixels);
  const std::size_t lanes = hn::Lanes(d);
  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const auto in = hn::LoadU(d, words + i);
    if (areOpaque(in)) continue;
    const auto bytes = hn::BitCast(BlockBytes(), in);
    const auto a = normalizedAlpha<0>(bytes);
    const auto inverse = hn::Div(hn::Set(BlockFloats(), 1.0f), a);
    const auto out =
        pixelsOf(in, quotient(normalizedByte<1>(bytes), a, inverse), quotient(normalizedByte<2>(bytes), a, inverse),
                 quotient(normalizedByte<3>(bytes), a, inverse), in);
    storeNext<false>(out, d, words + i);
  }
  unpremultiplyTruncatedInPlaceScalar(pixels + 4 * i, count - i, 4);
}
#endif

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::kernels {

HWY_EXPORT(truncatedCopy);
HWY_EXPORT(truncatedInPlace);

void unpremultiplyTruncated(std::uint8_t* destination, const std::uint8_t* source, std::size_t count, std::size_t step,
                            const Background& background) {
  if (useScalar() || step != 4 || !fitsVectors(background) ||
      overlapsShifted(destination, 4 * count, source, 4 * count)) {
    return unpremultiplyTruncatedScalar(destination, source, count, step, background);
  }
  HWY_DYNAMIC_DISPATCH(truncatedCopy)(destination, source, count, background);
}

void unpremultiplyTruncatedInPlace(std::uint8_t* pixels, std::size_t count, std::size_t step) {
  if (useScalar() || step != 4) return unpremultiplyTruncatedInPlaceScalar(pixels, count, step);
  HWY_DYNAMIC_DISPATCH(truncatedInPlace)(pixels, count);
}

}  // namespace vorto::kernels
#endif
