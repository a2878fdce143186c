// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Unpremultiply.h"

#include "TarnCore/kernels/Dispatch.h"

#include <cmath>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "TarnCore/kernels/Unpremultiply.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "TarnCore/kernels/Rounding-inl.h"
#include "TarnCore/kernels/Stores-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {

#if !VORTO_BLOCK_OPS
void unpremultiplyRGBA(std::uint8_t* pixels, std::size_t count, const Background& background) {
  unpremultiplyRGBA8Scalar(pixels, count, background);
}
void unpremultiplyARGB(std::uint8_t* pixels, std::size_t count, const Background& background) {
  unpremultiplyARGB8Scalar(pixels, count, background);
}
void unpremultiplyWords(std::uint8_t* pixels, std::size_t count, const Background& background) {
  unpremultiplyRGBA16Scalar(pixels, count, background);
}
void unpremultiplyHalves(std::uint8_t* pixels, std::size_t count, const Background& background) {
  unpremultiplyRGBAHalfScalar(pixels, count, background);
}
void unpremultiplyFloats(std::uint8_t* pixels, std::size_t count, const Background& background) {
  unpremultiplyRGBAFloatScalar(pixels, count, background);
}
#else
using Pixels8 = hn::Repartition<std::uint32_t, BlockBytes>;

// Where a layout has its channels.
struct OrderRGBA {
  static constexpr int red = 0, green = 1, blue = 2, alpha = 3;
};
struct OrderARGB {
  static constexpr int alpha = 0, red = 1, green = 2, blue = 3;
};

template <int index>
HWY_INLINE hn::Vec<BlockWide> byteOf(hn::Vec<Pixels8> pixels) {
  const auto shifted = hn::ShiftRight<8 * index>(pixels);
  return hn::BitCast(BlockWide(), index == 3 ? shifted : hn::And(shifted, hn::Set(Pixels8(), 255)));
}

// 255 x c', rounded.
HWY_INLINE hn::Vec<BlockWide> straight(hn::Vec<BlockFloats> color, float background, hn::Vec<BlockFloats> share,
                                       hn::Vec<BlockFloats> inverse) {
  const BlockFloats d;
  const auto rest = hn::Sub(color, hn::Mul(hn::Set(d, background), share));
  return roundedProduct<255>(hn::Mul(rest, inverse));
}

// A pixel (in memory order) of the background and alpha 0.
template <class Order>
std::uint32_t transparentPixel(const Background& background) {
  std::uint8_t pixel[4] = {0, 0, 0, 0};
  if constexpr (Order::alpha == 3) {
    unpremultiplyRGBA8Scalar(pixel, 1, background);
  } else {
    unpremultiplyARGB8Scalar(pixel, 1, background);
  }
  return pixel[0] | pixel[1] << 8 | pixel[2] << 16 | static_cast<std::uint32_t>(pixel[3]) << 24;
}

// Pixels of four channels' vectors.
template <class Order>
HWY_INLINE hn::Vec<Pixels8> interleaved(hn::Vec<BlockWide> red, hn::Vec<BlockWide> green, hn::Vec<BlockWide> blue,
                                        hn::Vec<BlockWide> alpha) {
  return hn::BitCast(Pixels8(),
                     Order::alpha == 3 ? pixelBytesOf(red, green, blue, alpha) : pixelBytesOf(alpha, red, green, blue));
}

// Opaque pixels come back as they are, so a vector of them is left alone; so most of an image is passed at the speed at
// which it can be read.
template <class Order>
std::size_t unpremultiplyBytes(std::uint8_t* bytes, std::size_t count, const Background& background) {
  const Pixels8 dp;
  const BlockFloats df;
  auto* const pixels = reinterpret_cast<std::uint32_t*>(bytes);
  const auto alphaMask = hn::Set(dp, 0xFFu << (8 * Order::alpha));
  const auto transparent = hn::Set(dp, transparentPixel<Order>(background));
  const auto one = hn::Set(df, 1.0f);
  const std::size_t lanes = hn::Lanes(dp);
  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const auto in = hn::LoadU(dp, pixels + i);
    const auto alphaBits = hn::And(in, alphaMask);
    if (hn::AllTrue(dp, hn::Eq(alphaBits, alphaMask))) continue;
    const auto isTransparent = hn::Eq(alphaBits, hn::Zero(dp));
    if (hn::AllTrue(dp, isTransparent)) {
      storeNext<false>(transparent, dp, pixels + i);
      continue;
    }
    const auto bytesIn = hn::BitCast(BlockBytes(), in);
    const auto a = normalizedAlpha<Order::alpha>(bytesIn);
    const auto share = hn::Sub(one, a);
    const auto inverse = hn::Div(one, a);
    const auto red = straight(normalizedByte<Order::red>(bytesIn), background.red, share, inverse);
    const auto green = straight(normalizedByte<Order::green>(bytesIn), background.green, share, inverse);
    const auto blue = straight(normalizedByte<Order::blue>(bytesIn), background.blue, share, inverse);
    const auto out = interleaved<Order>(red, green, blue, byteOf<Order::alpha>(in));
    // Where alpha is 0 so are all channels of `out`.
    storeNext<false>(hn::Or(out, hn::IfThenElseZero(isTransparent, transparent)), dp, pixels + i);
  }
  return i;
}

void unpremultiplyRGBA(std::uint8_t* pixels, std::size_t count, const Background& background) {
  const std::size_t done = unpremultiplyBytes<OrderRGBA>(pixels, count, background);
  unpremultiplyRGBA8Scalar(pixels + 4 * done, count - done, background);
}

void unpremultiplyARGB(std::uint8_t* pixels, std::size_t count, const Background& background) {
  const std::size_t done = unpremultiplyBytes<OrderARGB>(pixels, count, background);
  unpremultiplyARGB8Scalar(pixels + 4 * done, count - done, background);
}

// Pixels of four floats in their blocks.
struct FloatPixels {
  explicit FloatPixels(const Background& b) {
    alignas(16) const float channels[4] = {b.red, b.green, b.blue, 0};
    background = hn::LoadDup128(BlockFloats(), channels);
  }

  // What becomes of the colors; the lane of alpha is of no use.
  HWY_INLINE hn::Vec<BlockFloats> straight(hn::Vec<BlockFloats> v) const {
    const BlockFloats d;
    const auto one = hn::Set(d, 1.0f);
    const auto alpha = hn::Broadcast<3>(v);
    const auto rest = hn::Sub(v, hn::Mul(background, hn::Sub(one, alpha)));
    const auto color = hn::Mul(rest, hn::Div(one, alpha));
    return hn::IfThenElse(hn::Gt(alpha, hn::Zero(d)), color, background);
  }

  hn::Vec<BlockFloats> background;
};

// The lanes of alpha in pixels of four words.
HWY_INLINE hn::Vec<BlockWords> alphaWords() {
  return hn::BitCast(BlockWords(), hn::Set(hn::Repartition<std::uint64_t, BlockBytes>(), 0xFFFF000000000000u));
}

HWY_INLINE hn::Vec<BlockWide> straightWords(const FloatPixels& pixels, hn::Vec<BlockWide> v) {
  const BlockFloats d;
  const auto color = pixels.straight(normalizedWords(v));
  return roundedProduct<65535>(hn::Min(color, hn::Set(d, 2.0f)));
}

void unpremultiplyWords(std::uint8_t* pixels, std::size_t count, const Background& background) {
  const BlockWords d;
  const BlockWide wide;
  auto* const channels = reinterpret_cast<std::uint16_t*>(pixels);
  const FloatPixels floats(background);
  const auto zero = hn::Zero(d);
  const auto isAlpha = alphaWords();
  const std::size_t whole = count * 4 / hn::Lanes(d) * hn::Lanes(d);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    const auto in = hn::LoadU(d, channels + i);
    const auto alpha = hn::And(in, isAlpha);
    if (hn::AllTrue(d, hn::Eq(alpha, isAlpha))) continue;  // opaque pixels come back as they are
    const auto lower = straightWords(floats, hn::BitCast(wide, hn::InterleaveLower(d, in, zero)));
    const auto upper = straightWords(floats, hn::BitCast(wide, hn::InterleaveUpper(d, in, zero)));
    storeNext<false>(hn::IfVecThenElse(isAlpha, in, packToWords(lower, upper)), d, channels + i);
  }
  unpremultiplyRGBA16Scalar(pixels + 2 * whole, count - whole / 4, background);
}

void unpremultiplyHalves(std::uint8_t* pixels, std::size_t count, const Background& background) {
  std::size_t whole = 0;
// Only these have instructions that convert halves.
#if HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX3_DL
  const BlockFloats d;
  const hn::Rebind<std::uint16_t, BlockFloats> dw;
  const hn::Rebind<hwy::float16_t, BlockFloats> dh;
  const hn::Repartition<std::uint64_t, decltype(dw)> dp;
  auto* const channels = reinterpret_cast<std::uint16_t*>(pixels);
  const FloatPixels floats(background);
  const auto isAlpha = hn::BitCast(dw, hn::Set(dp, 0xFFFF000000000000u));
  whole = count * 4 / hn::Lanes(d) * hn::Lanes(d);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    const auto in = hn::LoadU(dw, channels + i);
    const auto out = hn::DemoteTo(dh, floats.straight(hn::PromoteTo(d, hn::BitCast(dh, in))));
    storeNext<false>(hn::IfVecThenElse(isAlpha, in, hn::BitCast(dw, out)), dw, channels + i);
  }
#endif
  unpremultiplyRGBAHalfScalar(pixels + 2 * whole, count - whole / 4, background);
}

void unpremultiplyFloats(std::uint8_t* pixels, std::size_t count, const Background& background) {
  const BlockFloats d;
  const hn::RebindToUnsigned<BlockFloats> bits;
  alignas(16) static constexpr std::uint32_t alphaLane[4] = {0, 0, 0, 0xFFFFFFFFu};
  const auto isAlpha = hn::MaskFromVec(hn::BitCast(d, hn::LoadDup128(bits, alphaLane)));
  auto* const channels = reinterpret_cast<float*>(pixels);
  const FloatPixels floats(background);
  const std::size_t whole = count * 4 / hn::Lanes(d) * hn::Lanes(d);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) {
    const auto in = hn::LoadU(d, channels + i);
    storeNext<false>(hn::IfThenElse(isAlpha, in, floats.straight(in)), d, channels + i);
  }
  unpremultiplyRGBAFloatScalar(pixels + 4 * whole, count - whole / 4, background);
}
#endif

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::kernels {

HWY_EXPORT(unpremultiplyRGBA);
HWY_EXPORT(unpremultiplyARGB);
HWY_EXPORT(unpremultiplyWords);
HWY_EXPORT(unpremultiplyHalves);
HWY_EXPORT(unpremultiplyFloats);

bool fitsVectors(const Background& background) {
  const auto fits = [](float v) { return v == 0.0f || (std::abs(v) >= 1e-10f && std::abs(v) <= 8192.0f); };
  return fits(background.red) && fits(background.green) && fits(background.blue);
}

namespace {

bool definitionOnly(const Background& b) {
  return useScalar() || !fitsVectors(b);
}

}  // namespace

void unpremultiplyRGBA8(std::uint8_t* pixels, std::size_t count, const Background& background) {
  if (definitionOnly(background)) return unpremultiplyRGBA8Scalar(pixels, count, background);
  HWY_DYNAMIC_DISPATCH(unpremultiplyRGBA)(pixels, count, background);
}

void unpremultiplyARGB8(std::uint8_t* pixels, std::size_t count, const Background& background) {
  if (definitionOnly(background)) return unpremultiplyARGB8Scalar(pixels, count, background);
  HWY_DYNAMIC_DISPATCH(unpremultiplyARGB)(pixels, count, background);
}

void unpremultiplyRGBA16(std::uint8_t* pixels, std::size_t count, const Background& background) {
  if (definitionOnly(background)) return unpremultiplyRGBA16Scalar(pixels, count, background);
  HWY_DYNAMIC_DISPATCH(unpremultiplyWords)(pixels, count, background);
}

void unpremultiplyRGBAHalf(std::uint8_t* pixels, std::size_t count, const Background& background) {
  if (definitionOnly(background)) return unpremultiplyRGBAHalfScalar(pixels, count, background);
  HWY_DYNAMIC_DISPATCH(unpremultiplyHalves)(pixels, count, background);
}

void unpremultiplyRGBAFloat(std::uint8_t* pixels, std::size_t count, const Background& background) {
  if (definitionOnly(background)) return unpremultiplyRGBAFloatScalar(pixels, count, background);
  HWY_DYNAMIC_DISPATCH(unpremultiplyFloats)(pixels, count, background);
}

}  // namespace vorto::kernels
#endif
