#include "TarnCore/kernels/UnpremultiplyTruncated.h"

#include "TarnCore/kernels/Dispatch.h"
#include "TarnCore/kernels/Memory.h"

#include <cmath>

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

template <int index>
HWY_INLINE Floats channelOf(hn::Vec<Pixels8> pixels) {
  const auto byte = hn::And(hn::ShiftRight<8 * index>(pixels), hn::Set(Pixels8(), 255));
  return normalizedBytes(hn::BitCast(BlockWide(), byte));
}

template <int index>
HWY_INLINE hn::Vec<Pixels8> storedChannel(Floats v) {
  const auto product = hn::Mul(v, hn::Set(BlockFloats(), 255.0f));
  return hn::ShiftLeft<8 * index>(hn::BitCast(Pixels8(), truncateToIntegers(product)));
}

HWY_INLINE Floats limited(Floats v) {
  const BlockFloats d;
  return hn::Min(hn::Max(v, hn::Zero(d)), hn::Set(d, 1.0f));
}

HWY_INLINE hn::Vec<Pixels8> pixelOf(Floats a, Floats red, Floats green, Floats blue) {
  return hn::Or(hn::Or(storedChannel<0>(a), storedChannel<1>(red)),
                hn::Or(storedChannel<2>(green), storedChannel<3>(blue)));
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
  const std::size_t lanes = hn::Lanes(d);
  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const auto in = hn::LoadU(d, reinterpret_cast<const std::uint32_t*>(source) + i);
    const auto a = channelOf<0>(in);
    const auto share = hn::Sub(hn::Set(df, 1.0f), a);
    const auto straight = [&](Floats c, float b) {
      return limited(hn::Div(hn::Sub(c, hn::Mul(hn::Set(df, b), share)), a));
    };
    const auto out = pixelOf(a, straight(channelOf<1>(in), background.red),
                             straight(channelOf<2>(in), background.green), straight(channelOf<3>(in), background.blue));
    const auto isTransparent = hn::Eq(hn::And(in, hn::Set(d, 255)), hn::Zero(d));
    storeNext<false>(hn::IfThenElse(isTransparent, transparent, out), d,
                     reinterpret_cast<std::uint32_t*>(destination) + i);
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
    const auto a = channelOf<0>(in);
    const auto out = pixelOf(a, limited(hn::Div(channelOf<1>(in), a)), limited(hn::Div(channelOf<2>(in), a)),
                             limited(hn::Div(channelOf<3>(in), a)));
    const auto isTransparent = hn::Eq(hn::And(in, hn::Set(d, 255)), hn::Zero(d));
    storeNext<false>(hn::IfThenElse(isTransparent, in, out), d, words + i);
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
  const bool finite =
      std::isfinite(background.red) && std::isfinite(background.green) && std::isfinite(background.blue);
  if (useScalar() || step != 4 || !finite || overlapsShifted(destination, 4 * count, source, 4 * count)) {
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
