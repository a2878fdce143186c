// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/YUV422.h"

#include "TarnCore/kernels/Dispatch.h"
#include "TarnCore/kernels/Memory.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "TarnCore/kernels/YUV422.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "TarnCore/kernels/BlockOps-inl.h"
#include "TarnCore/kernels/Stores-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {

#if !VORTO_BLOCK_OPS
void toARGB(std::uint8_t* argb, const std::uint8_t* yuv, std::size_t pairs, bool) {
  convertYUVtoARGBScalar(argb, yuv, pairs);
}
void toYUV(std::uint8_t* yuv, const std::uint8_t* argb, std::size_t pairs, bool) {
  convertARGBtoYUVScalar(yuv, argb, pairs);
}
void toARGBLagging(std::uint8_t* argb, const std::uint8_t* yuv, bool firstIsOdd, std::size_t count, bool) {
  convertLaggingYUVtoARGBScalar(argb, 4, yuv, firstIsOdd, count);
}
#else
// A vector of bytes from a rule of 16.
HWY_INLINE hn::Vec<BlockBytes> rule(const std::uint8_t* bytes) {
  return hn::LoadDup128(BlockBytes(), bytes);
}

// Bytes a, b, a, b, ... with the first at the lower address.
HWY_INLINE hn::Vec<BlockBytes> pairs(int a, int b) {
  return hn::BitCast(BlockBytes(), hn::Set(BlockWords(), static_cast<std::uint16_t>((a & 255) | (b & 255) << 8)));
}
HWY_INLINE hn::Vec<BlockSignedBytes> signedPairs(int a, int b) {
  return hn::BitCast(BlockSignedBytes(), pairs(a, b));
}

// Pixels of whose every 64-bit lane of `yuv` holds four (in each block four of the first half of the vector, four of
// the second), for which `uy` has (U, Y) and `yv` has (Y, V) of each: the pixels of the first half, then the second.
//
// The sums of the formulas do not fit words, but halves and quarters of them do, and those are exact: with
//   (298 y + 409 v) >> 8 = (149 y + 204 v + (v >> 1)) >> 7
//   (298 y - 100 u - 208 v) >> 8 = (74 y - 25 u - 52 v + (y >> 1)) >> 6
//   (298 y + 516 u) >> 8 = (74 y + 129 u + (y >> 1)) >> 6
// only sums that lie beyond 255 saturate. Where a byte is signed it is Y - 128, U - 128 or V - 128.
struct ARGBPixels {
  hn::Vec<BlockBytes> first, second;
};
HWY_INLINE ARGBPixels pixelsOf(hn::Vec<BlockBytes> uy, hn::Vec<BlockBytes> yv) {
  const BlockIntegers d;
  const auto signs = hn::Set(BlockBytes(), 0x80);
  const auto signedUY = hn::BitCast(BlockSignedBytes(), hn::Xor(uy, signs));
  const auto signedYV = hn::BitCast(BlockSignedBytes(), hn::Xor(yv, signs));
  const auto halfY = hn::BitCast(d, hn::ShiftRight<9>(hn::BitCast(BlockWords(), uy)));
  const auto halfV = hn::BitCast(d, hn::ShiftRight<9>(hn::BitCast(BlockWords(), yv)));

  const auto redRest = hn::Add(halfV, hn::Set(d, 149 * 112 - 64));
  const auto red = hn::ShiftRight<7>(hn::SaturatedAdd(sumOfBytePairs(pairs(149, 204), signedYV), redRest));
  const auto lumaRest = hn::Add(halfY, hn::Set(d, 74 * 112 - 8));
  const auto blue = hn::ShiftRight<6>(hn::SaturatedAdd(sumOfBytePairs(pairs(129, 74), signedUY), lumaRest));
  const auto greenRest = hn::Add(lumaRest, hn::Set(d, 25 * 128 + 52 * 128 - 74 * 128));
  const auto greenSum = hn::Add(sumOfBytePairs(uy, signedPairs(-25, 74)), sumOfBytePairs(yv, signedPairs(0, -52)));
  const auto green = hn::ShiftRight<6>(hn::Add(greenSum, greenRest));

  const auto alphaGreen = packToBytes(hn::Set(d, 255), green);
  const auto redBlue = packToBytes(red, blue);
  const auto alphaRed = hn::BitCast(BlockWords(), hn::InterleaveLower(BlockBytes(), alphaGreen, redBlue));
  const auto greenBlue = hn::BitCast(BlockWords(), hn::InterleaveUpper(BlockBytes(), alphaGreen, redBlue));
  return {hn::BitCast(BlockBytes(), hn::InterleaveLower(BlockWords(), alphaRed, greenBlue)),
          hn::BitCast(BlockBytes(), hn::InterleaveUpper(BlockWords(), alphaRed, greenBlue))};
}

using Quads = hn::Repartition<std::uint64_t, BlockBytes>;

// Lane 2i comes from lane i of the first half, lane 2i + 1 from lane i of the second; and the way back.
HWY_INLINE hn::Vec<BlockBytes> interleaveHalves(hn::Vec<BlockBytes> v) {
  alignas(64) static constexpr std::uint64_t k16[2] = {0, 1};
  alignas(64) static constexpr std::uint64_t k32[4] = {0, 2, 1, 3};
  alignas(64) static constexpr std::uint64_t k64[8] = {0, 4, 1, 5, 2, 6, 3, 7};
  const Quads d;
  const std::uint64_t* const order = hn::Lanes(d) == 2 ? k16 : hn::Lanes(d) == 4 ? k32 : k64;
  return hn::BitCast(BlockBytes(), hn::TableLookupLanes(hn::BitCast(d, v), hn::SetTableIndices(d, order)));
}
HWY_INLINE hn::Vec<BlockWords> separateHalves(hn::Vec<BlockWords> v) {
  alignas(64) static constexpr std::uint64_t k16[2] = {0, 1};
  alignas(64) static constexpr std::uint64_t k32[4] = {0, 2, 1, 3};
  alignas(64) static constexpr std::uint64_t k64[8] = {0, 2, 4, 6, 1, 3, 5, 7};
  const Quads d;
  const std::uint64_t* const order = hn::Lanes(d) == 2 ? k16 : hn::Lanes(d) == 4 ? k32 : k64;
  return hn::BitCast(BlockWords(), hn::TableLookupLanes(hn::BitCast(d, v), hn::SetTableIndices(d, order)));
}

template <bool streamed>
std::size_t toARGBVectors(std::uint8_t* argb, const std::uint8_t* yuv, std::size_t pairCount) {
  alignas(16) static constexpr std::uint8_t orderUY[16] = {0, 1, 0, 3, 4, 5, 4, 7, 8, 9, 8, 11, 12, 13, 12, 15};
  alignas(16) static constexpr std::uint8_t orderYV[16] = {1, 2, 3, 2, 5, 6, 7, 6, 9, 10, 11, 10, 13, 14, 15, 14};
  const auto uy = rule(orderUY);
  const auto yv = rule(orderYV);
  const std::size_t step = hn::Lanes(BlockBytes());
  const std::size_t whole = pairCount * 4 / step * step;
  for (std::size_t i = 0; i < whole; i += step) {
    const auto in = interleaveHalves(hn::LoadU(BlockBytes(), yuv + i));
    const ARGBPixels out = pixelsOf(hn::TableLookupBytes(in, uy), hn::TableLookupBytes(in, yv));
    storeNext<streamed>(out.first, BlockBytes(), argb + 2 * i);
    storeNext<streamed>(out.second, BlockBytes(), argb + 2 * i + step);
  }
  finishStores<streamed>();
  return whole / 4;
}

void toARGB(std::uint8_t* argb, const std::uint8_t* yuv, std::size_t pairCount, bool streamed) {
  const std::size_t done = streamed && isAlignedToVector(argb) ? toARGBVectors<true>(argb, yuv, pairCount)
                                                               : toARGBVectors<false>(argb, yuv, pairCount);
  convertYUVtoARGBScalar(argb + 8 * done, yuv + 4 * done, pairCount - done);
}

// A vector of columns, the first of which is odd or even, with the column before it readable. Of a pair that begins
// with an even column both take the U of their own, of one that begins with an odd column the V; of the other chroma
// the second column has its own, and the first that of the column before.
template <bool firstIsOdd>
HWY_INLINE ARGBPixels laggingPixels(const std::uint8_t* yuv) {
  alignas(16) static constexpr std::uint8_t orderUY[16] = {0, 1, 0, 3, 4, 5, 4, 7, 8, 9, 8, 11, 12, 13, 12, 15};
  alignas(16) static constexpr std::uint8_t orderYV[16] = {1, 0, 3, 0, 5, 4, 7, 4, 9, 8, 11, 8, 13, 12, 15, 12};
  const BlockWords words;
  const auto own = interleaveHalves(hn::LoadU(BlockBytes(), yuv));
  const auto before = interleaveHalves(hn::LoadU(BlockBytes(), yuv - 2));
  const auto luma = hn::BitCast(words, own);
  const auto other = hn::OddEven(luma, hn::BitCast(words, before));
  if constexpr (firstIsOdd) {
    const auto chroma = hn::Set(words, 0x00FF);
    const auto uy = hn::OrAnd(hn::AndNot(chroma, luma), other, chroma);
    return pixelsOf(hn::BitCast(BlockBytes(), uy), hn::TableLookupBytes(own, rule(orderYV)));
  } else {
    const auto yv = hn::Or(hn::ShiftRight<8>(luma), hn::ShiftLeft<8>(other));
    return pixelsOf(hn::TableLookupBytes(own, rule(orderUY)), hn::BitCast(BlockBytes(), yv));
  }
}

// Whole vectors of columns, as laggingPixels() takes them. Returns how many columns those were.
template <bool streamed, bool firstIsOdd>
std::size_t laggingVectors(std::uint8_t* argb, const std::uint8_t* yuv, std::size_t count) {
  const std::size_t step = hn::Lanes(BlockBytes());
  const std::size_t whole = count * 2 / step * step;
  for (std::size_t i = 0; i < whole; i += step) {
    const ARGBPixels out = laggingPixels<firstIsOdd>(yuv + i);
    storeNext<streamed>(out.first, BlockBytes(), argb + 2 * i);
    storeNext<streamed>(out.second, BlockBytes(), argb + 2 * i + step);
  }
  finishStores<streamed>();
  return whole / 2;
}

template <bool streamed>
std::size_t laggingVectors(std::uint8_t* argb, const std::uint8_t* yuv, bool firstIsOdd, std::size_t count) {
  if (firstIsOdd) return laggingVectors<streamed, true>(argb, yuv, count);
  return laggingVectors<streamed, false>(argb, yuv, count);
}

// The first pixel is as defined. A vector behind it, which may lie anywhere, covers the columns before the first
// aligned one, and another one the last columns; some are made twice.
void toARGBLagging(std::uint8_t* argb, const std::uint8_t* yuv, bool firstIsOdd, std::size_t count, bool streamed) {
  const std::size_t lanes = hn::Lanes(BlockBytes());
  if (count < 1 + lanes / 2) return convertLaggingYUVtoARGBScalar(argb, 4, yuv, firstIsOdd, count);
  convertLaggingYUVtoARGBScalar(argb, 4, yuv, firstIsOdd, 1);
  laggingVectors<false>(argb + 4, yuv + 2, !firstIsOdd, lanes / 2);

  const std::size_t past = reinterpret_cast<std::uintptr_t>(argb + 4) % lanes;
  const std::size_t start = past % 4 == 0 ? 1 + (lanes - past) / 4 : 1;
  const auto isOdd = [firstIsOdd](std::size_t column) { return firstIsOdd != (column % 2 != 0); };
  const auto vectors = streamed && past % 4 == 0 ? laggingVectors<true> : laggingVectors<false>;
  const std::size_t done = start + vectors(argb + 4 * start, yuv + 2 * start, isOdd(start), count - start);
  if (done == count) return;
  const std::size_t last = count - lanes / 2;
  laggingVectors<false>(argb + 4 * last, yuv + 2 * last, isOdd(last), lanes / 2);
}

// A vector of pixels (A, R, G, B) as words: a pixel's chroma byte (U at even pixels, V at odd ones), then its Y.
//
// Means that are rounded down are complements of complements' means rounded up; the coefficients of U, and of V, add up
// to 0, so the complements need no correction. R, G and B are less 128 where they are signed.
HWY_INLINE hn::Vec<BlockWide> wordsOf(hn::Vec<BlockBytes> pixels) {
  alignas(16) static constexpr std::int8_t chromaRule[16] = {0, 38, 74, -112, 0, -112, 94, 18,
                                                             0, 38, 74, -112, 0, -112, 94, 18};
  alignas(16) static constexpr std::uint8_t lumaRule[16] = {0, 66, 129, 25, 0, 66, 129, 25,
                                                            0, 66, 129, 25, 0, 66, 129, 25};
  const BlockBytes d;
  const BlockWide wide;
  const hn::Repartition<std::uint32_t, BlockBytes> wideBits;
  const auto complements = hn::Xor(pixels, hn::Set(d, 0xFF));
  const auto partners = hn::BitCast(d, hn::Shuffle2301(hn::BitCast(wide, complements)));
  const auto means = hn::AverageRound(complements, partners);
  const auto chroma = sumOfWordPairs(sumOfBytePairs(means, hn::LoadDup128(BlockSignedBytes(), chromaRule)));
  const auto chromaByte = hn::ShiftRight<8>(hn::BitCast(wideBits, hn::Add(chroma, hn::Set(wide, 128 * 256))));

  const auto signedPixels = hn::BitCast(BlockSignedBytes(), hn::Xor(pixels, hn::Set(d, 0x80)));
  const auto luma = sumOfWordPairs(sumOfBytePairs(hn::LoadDup128(d, lumaRule), signedPixels));
  const auto lumaSum = hn::BitCast(wideBits, hn::Add(luma, hn::Set(wide, (66 + 129 + 25) * 128 + 16 * 256)));
  return hn::BitCast(wide, hn::OrAnd(chromaByte, lumaSum, hn::Set(wideBits, 0xFF00)));
}

template <bool streamed>
std::size_t toYUVVectors(std::uint8_t* yuv, const std::uint8_t* argb, std::size_t pairCount) {
  const std::size_t step = hn::Lanes(BlockBytes());
  const std::size_t whole = pairCount * 4 / step * step;
  for (std::size_t i = 0; i < whole; i += step) {
    const auto first = wordsOf(hn::LoadU(BlockBytes(), argb + 2 * i));
    const auto second = wordsOf(hn::LoadU(BlockBytes(), argb + 2 * i + step));
    storeNext<streamed>(hn::BitCast(BlockBytes(), separateHalves(packToWords(first, second))), BlockBytes(), yuv + i);
  }
  finishStores<streamed>();
  return whole / 4;
}

void toYUV(std::uint8_t* yuv, const std::uint8_t* argb, std::size_t pairCount, bool streamed) {
  const std::size_t done = streamed && isAlignedToVector(yuv) ? toYUVVectors<true>(yuv, argb, pairCount)
                                                              : toYUVVectors<false>(yuv, argb, pairCount);
  convertARGBtoYUVScalar(yuv + 4 * done, argb + 8 * done, pairCount - done);
}
#endif

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::kernels {

HWY_EXPORT(toARGB);
HWY_EXPORT(toARGBLagging);
HWY_EXPORT(toYUV);

void convertYUVtoARGB(std::uint8_t* argb, const std::uint8_t* yuv, std::size_t pairs, bool streamed) {
  if (useScalar() || overlapsShifted(argb, 8 * pairs, yuv, 4 * pairs)) {
    return convertYUVtoARGBScalar(argb, yuv, pairs);
  }
  HWY_DYNAMIC_DISPATCH(toARGB)(argb, yuv, pairs, streamed);
}

void convertARGBtoYUV(std::uint8_t* yuv, const std::uint8_t* argb, std::size_t pairs, bool streamed) {
  if (useScalar() || overlapsShifted(yuv, 4 * pairs, argb, 8 * pairs)) {
    return convertARGBtoYUVScalar(yuv, argb, pairs);
  }
  HWY_DYNAMIC_DISPATCH(toYUV)(yuv, argb, pairs, streamed);
}

void convertLaggingYUVtoARGB(std::uint8_t* argb, std::size_t step, const std::uint8_t* yuv, bool firstIsOdd,
                             std::size_t count, bool streamed) {
  if (useScalar() || step != 4 || overlapsShifted(argb, 4 * count, yuv - 2, 2 * count + 4)) {
    return convertLaggingYUVtoARGBScalar(argb, step, yuv, firstIsOdd, count);
  }
  HWY_DYNAMIC_DISPATCH(toARGBLagging)(argb, yuv, firstIsOdd, count, streamed);
}

}  // namespace vorto::kernels
#endif
