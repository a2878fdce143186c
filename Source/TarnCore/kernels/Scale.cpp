// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Scale.h"

#include "TarnCore/kernels/Dispatch.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "TarnCore/kernels/Scale.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "TarnCore/kernels/Stores-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {

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

// Pixels of six bytes as words of eight, as long as a word ends within both rows: the next pixel overwrites what is too
// much.
HWY_INLINE void gatherSixBytes(std::uint8_t* out, const std::uint8_t* row, std::size_t rowPixels,
                               const std::uint32_t* columns, std::size_t count) {
  std::size_t i = 0;
  for (; i + 4 < count && std::size_t{columns[i + 3]} + 2 <= rowPixels; i += 4) {
    for (std::size_t k = i; k < i + 4; ++k) std::memcpy(out + k * 6, row + std::size_t{columns[k]} * 6, 8);
  }
  gatherOneByOne<6>(out + i * 6, row, columns + i, count - i);
}

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
template <class Word>
void gatherWords(std::uint8_t* out, const std::uint8_t* row, std::size_t, const std::uint32_t* columns,
                 std::size_t count) {
  gatherOneByOne<sizeof(Word)>(out, row, columns, count);
}
#else
// Pixels as words: as long as one vector of destination pixels comes from two vectors of source pixels, the words are
// picked out of registers; each source word is loaded once and no gather is needed.
template <class Word>
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
      gatherOneByOne<sizeof(Word)>(out + i * sizeof(Word), row, columns + i, lanes);
      continue;
    }
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
    storeNext<false>(hn::IfThenElse(isHigh, high, low), d, reinterpret_cast<Word*>(out) + i);
  }
  gatherOneByOne<sizeof(Word)>(out + i * sizeof(Word), row, columns + i, count - i);
}
#endif

void gather(std::uint8_t* out, const std::uint8_t* row, std::size_t rowPixels, const std::uint32_t* columns,
            std::size_t count, std::size_t pixelBytes) {
  switch (pixelBytes) {
    case 2:
      return gatherOneByOne<2>(out, row, columns, count);
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

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::kernels {

HWY_EXPORT(gather);

void gatherPixels(std::uint8_t* out, const std::uint8_t* row, std::size_t rowPixels, const std::uint32_t* columns,
                  std::size_t count, std::size_t pixelBytes) {
  HWY_DYNAMIC_DISPATCH(gather)(out, row, rowPixels, columns, count, pixelBytes);
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
