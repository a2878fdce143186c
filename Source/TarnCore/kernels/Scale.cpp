// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Scale.h"

#include "TarnCore/kernels/Dispatch.h"

#include <bit>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "TarnCore/kernels/Scale.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "TarnCore/kernels/Stores-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {

constexpr std::uintptr_t kAhead = 1024;  // bytes at which source pixels are asked for

template <std::size_t bytes>
HWY_INLINE void gatherOneByOne(std::uint8_t* out, const std::uint8_t* row, const std::uint32_t* columns,
                               std::size_t count) {
  const auto take = [&](std::size_t i) { std::memcpy(out + i * bytes, row + std::size_t{columns[i]} * bytes, bytes); };
  std::size_t i = 0;
  for (; i + 4 <= count; i += 4) {
    take(i);
    take(i + 1);
    take(i + 2);
    take(i + 3);
  }
  for (; i < count; ++i) take(i);
}

// Words, turned to the right by so many bits.
template <class Word, int turn>
HWY_INLINE void gatherTurned(std::uint8_t* out, const std::uint8_t* row, const std::uint32_t* columns,
                             std::size_t count) {
  if constexpr (turn == 0) return gatherOneByOne<sizeof(Word)>(out, row, columns, count);
  for (std::size_t i = 0; i < count; ++i) {
    Word word;
    std::memcpy(&word, row + std::size_t{columns[i]} * sizeof word, sizeof word);
    word = std::rotr(word, turn);
    std::memcpy(out + i * sizeof word, &word, sizeof word);
  }
}

// Pixels of six bytes as words of eight, as long as a word ends within both rows: the next pixel overwrites what is too
// much.
HWY_INLINE void gatherSixBytes(std::uint8_t* out, const std::uint8_t* row, std::size_t rowPixels,
                               const std::uint32_t* columns, std::size_t count) {
  std::size_t i = 0;
  for (; i + 4 < count && std::size_t{columns[i + 3]} + 2 <= rowPixels; i += 4) {
    expectRead<kAhead>(row + std::size_t{columns[i]} * 6);
    for (std::size_t k = i; k < i + 4; ++k) std::memcpy(out + k * 6, row + std::size_t{columns[k]} * 6, 8);
  }
  gatherOneByOne<6>(out + i * 6, row, columns + i, count - i);
}

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
void gatherTwoBytes(std::uint8_t* out, const std::uint8_t* row, std::size_t, const std::uint32_t* columns,
                    std::size_t count) {
  gatherOneByOne<2>(out, row, columns, count);
}
template <class Word, int turn = 0>
void gatherWords(std::uint8_t* out, const std::uint8_t* row, std::size_t, const std::uint32_t* columns,
                 std::size_t count) {
  gatherTurned<Word, turn>(out, row, columns, count);
}
#else
// Pixels of two bytes, eight at a time: as long as they come from sixteen source pixels, their bytes are picked out of
// two vectors. An index that is not for a vector has its highest bit set and picks 0.
void gatherTwoBytes(std::uint8_t* out, const std::uint8_t* row, std::size_t rowPixels, const std::uint32_t* columns,
                    std::size_t count) {
  const hn::CappedTag<std::uint8_t, 16> d;
  const hn::Repartition<std::uint16_t, decltype(d)> pairs;
  const hn::Repartition<std::int16_t, decltype(d)> signedPairs;
  const hn::Repartition<std::int32_t, decltype(d)> columnTag;
  constexpr std::size_t kTogether = 8;
  std::size_t i = 0;
  for (; i + kTogether <= count; i += kTogether) {
    const std::uint32_t first = columns[i];
    const std::uint8_t* const from = row + std::size_t{first} * 2;
    if (columns[i + kTogether - 1] - first >= 2 * kTogether || first + 2 * kTogether > rowPixels) {
      gatherOneByOne<2>(out + i * 2, row, columns + i, kTogether);
      continue;
    }
    expectRead<kAhead>(from);
    const auto relative = [&](std::size_t k) HWY_ATTR {
      const auto* const place = reinterpret_cast<const std::int32_t*>(columns + i + k);
      return hn::Sub(hn::LoadU(columnTag, place), hn::Set(columnTag, static_cast<std::int32_t>(first)));
    };
    const auto pixels = hn::BitCast(pairs, hn::ReorderDemote2To(signedPairs, relative(0), relative(4)));
    const auto bytes = hn::BitCast(d, hn::Add(hn::Mul(pixels, hn::Set(pairs, 0x0202)), hn::Set(pairs, 0x0100)));
    const auto isHigh = hn::VecFromMask(d, hn::Gt(bytes, hn::Set(d, 15)));
    const auto low = hn::TableLookupBytesOr0(hn::LoadU(d, from), hn::Or(bytes, isHigh));
    const auto high = hn::TableLookupBytesOr0(hn::LoadU(d, from + 16), hn::Sub(bytes, hn::Set(d, 16)));
    hn::StoreU(hn::Or(low, high), d, out + i * 2);
  }
  gatherOneByOne<2>(out + i * 2, row, columns + i, count - i);
}

// Pixels as words: as long as one vector of destination pixels comes from two vectors of source pixels, the words are
// picked out of registers; each source word is loaded once and no gather is needed.
template <class Word, int turn = 0>
void gatherWords(std::uint8_t* out, const std::uint8_t* row, std::size_t rowPixels, const std::uint32_t* columns,
                 std::size_t count) {
  const hn::ScalableTag<Word> d;
  using Index = hwy::MakeSigned<Word>;
  const hn::Rebind<Index, decltype(d)> indexTag;
  const hn::Rebind<std::uint32_t, decltype(d)> columnTag;
  const std::size_t lanes = hn::Lanes(d);
  const Word* words = reinterpret_cast<const Word*>(row);
  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const std::uint32_t first = columns[i];
    if (columns[i + lanes - 1] - first >= 2 * lanes || first + 2 * lanes > rowPixels) {
      gatherTurned<Word, turn>(out + i * sizeof(Word), row, columns + i, lanes);
      continue;
    }
    expectRead<kAhead>(words + first);
    const auto relative32 = hn::Sub(hn::LoadU(columnTag, columns + i), hn::Set(columnTag, first));
    hn::Vec<decltype(indexTag)> relative;
    if constexpr (sizeof(Word) == 4) {
      relative = hn::BitCast(indexTag, relative32);
    } else {
      relative = hn::BitCast(indexTag, hn::PromoteTo(d, relative32));
    }
    const auto inVector = hn::And(relative, hn::Set(indexTag, static_cast<Index>(lanes - 1)));
    const auto indices = hn::IndicesFromVec(d, inVector);
    const auto low = hn::TableLookupLanes(hn::LoadU(d, words + first), indices);
    const auto high = hn::TableLookupLanes(hn::LoadU(d, words + first + lanes), indices);
    const auto isHigh = hn::RebindMask(d, hn::Gt(relative, hn::Set(indexTag, static_cast<Index>(lanes - 1))));
    auto picked = hn::IfThenElse(isHigh, high, low);
    if constexpr (turn != 0) picked = hn::RotateRight<turn>(picked);
    storeNext<false>(picked, d, reinterpret_cast<Word*>(out) + i);
  }
  gatherTurned<Word, turn>(out + i * sizeof(Word), row, columns + i, count - i);
}
#endif

void gather(std::uint8_t* out, const std::uint8_t* row, std::size_t rowPixels, const std::uint32_t* columns,
            std::size_t count, std::size_t pixelBytes) {
  switch (pixelBytes) {
    case 2:
      return gatherTwoBytes(out, row, rowPixels, columns, count);
    case 4:
      return gatherWords<std::uint32_t>(out, row, rowPixels, columns, count);
    case 6:
      return gatherSixBytes(out, row, rowPixels, columns, count);
    case 8:
      return gatherWords<std::uint64_t>(out, row, rowPixels, columns, count);
    case 16:
      return gatherOneByOne<16>(out, row, columns, count);
    default:
      for (std::size_t i = 0; i < count; ++i) {
        std::memcpy(out + i * pixelBytes, row + columns[i] * pixelBytes, pixelBytes);
      }
  }
}

void gatherToARGB(std::uint8_t* out, const std::uint8_t* row, std::size_t rowPixels, const std::uint32_t* columns,
                  std::size_t count) {
  gatherWords<std::uint32_t, 24>(out, row, rowPixels, columns, count);
}

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::kernels {

HWY_EXPORT(gather);
HWY_EXPORT(gatherToARGB);

void gatherPixels(std::uint8_t* out, const std::uint8_t* row, std::size_t rowPixels, const std::uint32_t* columns,
                  std::size_t count, std::size_t pixelBytes) {
  HWY_DYNAMIC_DISPATCH(gather)(out, row, rowPixels, columns, count, pixelBytes);
}

void gatherRGBA8ToARGB8(std::uint8_t* out, const std::uint8_t* row, std::size_t rowPixels, const std::uint32_t* columns,
                        std::size_t count) {
  HWY_DYNAMIC_DISPATCH(gatherToARGB)(out, row, rowPixels, columns, count);
}

bool isOrdinaryScale(const ScaleDestination& destination, std::size_t destinationPixelBytes, const ScaleSource& source,
                     std::size_t sourcePixelBytes) {
  if (destination.width == 0 || destination.height == 0 || source.width == 0 || source.height == 0) return false;
  const std::uint64_t from = std::uint64_t{source.width} * source.height;
  const std::uint64_t to = std::uint64_t{destination.width} * destination.height;
  if (from > source.accessible || to > destination.accessible) return false;
  const std::uint32_t lastColumn =
      scaledIndex(destination.width - 1, static_cast<double>(source.width) / destination.width);
  const std::uint32_t lastRow =
      scaledIndex(destination.height - 1, static_cast<double>(source.height) / destination.height);
  if (lastColumn >= source.width || lastRow >= source.height) return false;
  const std::uint8_t* toEnd = destination.pixels + to * destinationPixelBytes;
  const std::uint8_t* fromEnd = source.pixels + from * sourcePixelBytes;
  return toEnd <= source.pixels || fromEnd <= destination.pixels;
}

void scaleNearest(const ScaleDestination& destination, const ScaleSource& source, std::size_t pixelBytes) {
  if (useScalar() || !isOrdinaryScale(destination, pixelBytes, source, pixelBytes)) {
    return scaleNearestScalar(destination, source, pixelBytes);
  }
  const bool sameColumns = source.width == destination.width;
  forEachScaledRow(destination, pixelBytes, source, pixelBytes, [&](const ScaledRow& row) {
    if (sameColumns) {
      copyBytes(row.out, row.in + row.columns[0] * pixelBytes, row.count * pixelBytes, false);
    } else {
      gatherPixels(row.out, row.in, row.inPixels, row.columns, row.count, pixelBytes);
    }
  });
}

}  // namespace vorto::kernels
#endif  // HWY_ONCE
