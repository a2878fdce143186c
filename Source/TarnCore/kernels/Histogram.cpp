// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Histogram.h"

#include "TarnCore/kernels/Dispatch.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "TarnCore/kernels/Histogram.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

// Words and floats become bytes in vectors; bytes are counted one by one. What limits the counting is one store for
// each count, so whole blocks of one color, or of one alpha, are counted at once.
//
// Vectors may put into bin 255 what belongs into bin 254; the two are added up at the end.
HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR
void countAll(HistogramTables& tables, const HistogramRows& rows) {
  countHistogramScalar(tables, rows);
}
#else
constexpr std::size_t kBlockPixels = 16;
constexpr std::size_t kBlockBytes = 4 * kBlockPixels;

// Four tables for each channel, taken in turns, so that equal neighbours do not wait for one another. The padding
// keeps equal bins of different tables from sharing the address bits by which the processor orders loads and stores.
struct Tallies {
  static constexpr std::size_t Stride = 256 + 16;
  std::uint32_t counts[16][Stride];
};

HWY_INLINE void countPixel(Tallies& tallies, const std::uint8_t* in) {
  for (std::size_t c = 0; c < 4; ++c) ++tallies.counts[c][in[c]];
}

template <std::size_t channels>
HWY_INLINE void countPixelInTables(std::uint32_t (*tables)[Tallies::Stride], const std::uint8_t* in) {
  ++tables[0][in[0]];
  ++tables[1][in[1]];
  ++tables[2][in[2]];
  if constexpr (channels == 4) ++tables[3][in[3]];
}

// A block, pixel after pixel: written out, since compilers keep such loops.
template <std::size_t channels>
HWY_INLINE void countPixelsOfBlock(Tallies& tallies, const std::uint8_t* in) {
  for (const std::uint8_t* end = in + kBlockBytes; in != end; in += 16) {
    countPixelInTables<channels>(tallies.counts, in);
    countPixelInTables<channels>(tallies.counts + 4, in + 4);
    countPixelInTables<channels>(tallies.counts + 8, in + 8);
    countPixelInTables<channels>(tallies.counts + 12, in + 12);
  }
}

HWY_INLINE void countBlock(Tallies& tallies, const std::uint8_t* in) {
  const hn::CappedTag<std::uint32_t, kBlockPixels> d;
  const hn::Repartition<std::uint8_t, decltype(d)> bytes;
  std::uint32_t first;
  std::memcpy(&first, in, sizeof first);
  auto different = hn::Zero(d);
  for (std::size_t i = 0; i < kBlockBytes; i += 4 * hn::Lanes(d)) {
    different = hn::Or(different, hn::Xor(hn::BitCast(d, hn::LoadU(bytes, in + i)), hn::Set(d, first)));
  }
  if (!hn::AllTrue(d, hn::Lt(different, hn::Set(d, 1u << 24)))) {
    return countPixelsOfBlock<4>(tallies, in);
  }
  tallies.counts[3][in[3]] += kBlockPixels;
  if (!hn::AllTrue(d, hn::Eq(different, hn::Zero(d)))) {
    return countPixelsOfBlock<3>(tallies, in);
  }
  for (std::size_t c = 0; c < 3; ++c) tallies.counts[c][in[c]] += kBlockPixels;
}

void countBytes(Tallies& tallies, const std::uint8_t* in, std::size_t pixels) {
  std::size_t i = 0;
  for (; i + kBlockPixels <= pixels; i += kBlockPixels) countBlock(tallies, in + 4 * i);
  for (; i < pixels; ++i) countPixel(tallies, in + 4 * i);
}

// v / 257 rounded, which never is a half, in words without overflow.
struct WordBins {
  using Channel = std::uint16_t;
  using Words = hn::ScalableTag<std::uint16_t>;
  static std::size_t lanes() { return hn::Lanes(Words()); }
  static HWY_INLINE void write(std::uint8_t* out, const Channel* in) {
    const Words d;
    const hn::RebindToSigned<Words> signedTag;
    const hn::Rebind<std::uint8_t, Words> bytesTag;
    const auto v = hn::SaturatedAdd(hn::LoadU(d, in), hn::Set(d, 128));
    const auto rounded = hn::ShiftRight<8>(hn::Sub(v, hn::ShiftRight<8>(v)));
    hn::StoreU(hn::DemoteTo(bytesTag, hn::BitCast(signedTag, rounded)), bytesTag, out);
  }
};

// The integer part of a product and a sum with the two numbers just beside 255 and 0.5. For them alone the least
// float of every bin is that of the definition, whose quotient and whose sum are rounded too; between those nothing
// can differ, since both forms only rise. NaN counts as 0.
struct FloatBins {
  using Channel = float;
  using Floats = hn::ScalableTag<float>;
  static std::size_t lanes() { return hn::Lanes(Floats()); }
  static HWY_INLINE void write(std::uint8_t* out, const Channel* in) {
    const Floats d;
    const hn::RebindToSigned<Floats> integers;
    const hn::Rebind<std::uint8_t, Floats> bytesTag;
    const auto v = hn::LoadU(d, in);
    const auto bounded = hn::IfThenElseZero(hn::Gt(v, hn::Zero(d)), hn::Min(v, hn::Set(d, 1.0f)));
    const auto x = hn::Add(hn::Mul(bounded, hn::Set(d, 255.0f - 0x1p-16f)), hn::Set(d, 0.5f + 0x1p-24f));
    hn::StoreU(hn::DemoteTo(bytesTag, hn::ConvertTo(integers, x)), bytesTag, out);
  }
};

// `count` pixels by way of a buffer of bytes.
template <class Bins>
void countConverted(Tallies& tallies, const std::uint8_t* in, std::size_t count) {
  using Channel = typename Bins::Channel;
  constexpr std::size_t bufferPixels = 512;
  HWY_ALIGN std::uint8_t buffer[4 * bufferPixels];
  const std::size_t lanes = Bins::lanes();
  while (count > 0) {
    const std::size_t channels = 4 * std::min(count, bufferPixels);
    std::size_t i = 0;
    for (; i + lanes <= channels; i += lanes) {
      Bins::write(buffer + i, reinterpret_cast<const Channel*>(in + i * sizeof(Channel)));
    }
    for (; i < channels; ++i) {
      Channel value;
      std::memcpy(&value, in + i * sizeof value, sizeof value);
      buffer[i] = static_cast<std::uint8_t>(histogramBin(value));
    }
    countBytes(tallies, buffer, channels / 4);
    in += channels * sizeof(Channel);
    count -= channels / 4;
  }
}

void countPixels(Tallies& tallies, HistogramDepth depth, const std::uint8_t* in, std::size_t count) {
  switch (depth) {
    case HistogramDepth::Bytes:
      return countBytes(tallies, in, count);
    case HistogramDepth::Words:
      return countConverted<WordBins>(tallies, in, count);
    case HistogramDepth::Floats:
      return countConverted<FloatBins>(tallies, in, count);
  }
}

void countAll(HistogramTables& tables, const HistogramRows& rows) {
  Tallies tallies = {};
  const bool isOneRow = rows.bytesPerRow == rows.width * histogramPixelBytes(rows.depth);
  const std::size_t width = isOneRow ? rows.width * rows.height : rows.width;
  const std::size_t height = isOneRow ? 1 : rows.height;
  for (std::size_t y = 0; y < height; ++y) {
    countPixels(tallies, rows.depth, rows.pixels + y * rows.bytesPerRow, width);
  }
  for (std::size_t table = 0; table < 16; ++table) {
    const std::uint32_t* counts = tallies.counts[table];
    std::uint32_t* sums = tables.counts[table % 4];
    for (std::size_t bin = 0; bin < 255; ++bin) sums[bin] += counts[bin];
    sums[254] += counts[255];
  }
}
#endif

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::kernels {

HWY_EXPORT(countAll);

void countHistogram(HistogramTables& tables, const HistogramRows& rows) {
  if (useScalar()) return countHistogramScalar(tables, rows);
  HWY_DYNAMIC_DISPATCH(countAll)(tables, rows);
}

}  // namespace vorto::kernels
#endif  // HWY_ONCE
