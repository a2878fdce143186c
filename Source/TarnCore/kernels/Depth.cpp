// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Depth.h"

#include "TarnCore/kernels/Dispatch.h"
#include "TarnCore/kernels/Memory.h"

#include <algorithm>
#include <array>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "TarnCore/kernels/Depth.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "TarnCore/kernels/Rounding-inl.h"
#include "TarnCore/kernels/Stores-inl.h"

// Every conversion works on vectors of single channels; one vector holds whole pixels. A reader turns stored channels
// in RGBA order into floats, a writer turns floats into stored channels. ARGB pixels are rotated as words.
HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
void convert(std::uint8_t* out, DepthLayout to, const std::uint8_t* in, DepthLayout from, std::size_t count, bool) {
  convertDepthScalar(out, to, in, from, count);
}
#else
using Floats = hn::CappedTag<float, 16>;  // at least one pixel, and no more lanes than the widest target has
using Bytes = hn::Rebind<std::uint8_t, Floats>;
using Words = hn::Rebind<std::uint16_t, Floats>;
using Integers = hn::Rebind<std::int32_t, Floats>;
using FloatVector = hn::Vec<Floats>;

template <int bits, class D>
HWY_INLINE hn::Vec<D> rotatePixels(D d, hn::Vec<D> bytes) {
  const hn::Repartition<std::uint32_t, D> pixels;
  return hn::BitCast(d, hn::RotateRight<bits>(hn::BitCast(pixels, bytes)));
}

// v x (1 / largest), the product in double precision rounded to single: two single-precision products and a sum give
// the same for every stored value, since v x `high` is exact.
HWY_INLINE FloatVector normalizedVector(FloatVector v, float high, float low) {
  const Floats d;
  return hn::Add(hn::Mul(v, hn::Set(d, high)), hn::Mul(v, hn::Set(d, low)));
}

struct ReadRGBA8 {
  static constexpr std::size_t kChannelBytes = 1;
  static constexpr float kHigh = 0x1.01p-8f;
  static constexpr float kLow = 0x1.010102p-24f;
  static HWY_INLINE FloatVector fromBytes(hn::Vec<Bytes> bytes) {
    return normalizedVector(hn::ConvertTo(Floats(), hn::PromoteTo(Integers(), bytes)), kHigh, kLow);
  }
  static HWY_INLINE FloatVector read(const std::uint8_t* in) { return fromBytes(hn::LoadU(Bytes(), in)); }
};

struct ReadARGB8 {
  static constexpr std::size_t kChannelBytes = 1;
  static HWY_INLINE FloatVector read(const std::uint8_t* in) {
    return ReadRGBA8::fromBytes(rotatePixels<8>(Bytes(), hn::LoadU(Bytes(), in)));
  }
};

struct ReadRGBA16 {
  static constexpr std::size_t kChannelBytes = 2;
  static constexpr float kHigh = 0x1p-16f;
  static constexpr float kLow = 0x1.0001p-32f;
  static HWY_INLINE FloatVector read(const std::uint8_t* in) {
    const auto words = hn::LoadU(Words(), reinterpret_cast<const std::uint16_t*>(in));
    return normalizedVector(hn::ConvertTo(Floats(), hn::PromoteTo(Integers(), words)), kHigh, kLow);
  }
};

struct ReadRGBAHalf {
  static constexpr std::size_t kChannelBytes = 2;

  // The exponent moves from 5 to 8 bits by a multiplication, which is exact for subnormals too; infinities and NaN,
  // whose bits are kept, get the largest exponent.
  static HWY_INLINE FloatVector fromBits(const std::uint16_t* in) {
    const hn::RebindToUnsigned<Floats> bitsTag;
    const auto half = hn::PromoteTo(bitsTag, hn::LoadU(Words(), in));
    const auto magnitude = hn::And(half, hn::Set(bitsTag, 0x7FFF));
    const auto sign = hn::ShiftLeft<16>(hn::Sub(half, magnitude));
    const auto shifted = hn::ShiftLeft<13>(magnitude);
    const auto finite = hn::Mul(hn::BitCast(Floats(), shifted), hn::Set(Floats(), 0x1p112f));
    const auto special = hn::Or(shifted, hn::Set(bitsTag, 0x7F800000));
    const auto isSpecial = hn::Gt(hn::BitCast(Integers(), magnitude), hn::Set(Integers(), 0x7BFF));
    const auto value = hn::IfThenElse(hn::RebindMask(bitsTag, isSpecial), special, hn::BitCast(bitsTag, finite));
    return hn::BitCast(Floats(), hn::Or(sign, value));
  }

  static HWY_INLINE FloatVector read(const std::uint8_t* in) {
    const auto* words = reinterpret_cast<const std::uint16_t*>(in);
#if HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX3_DL
    const hn::Rebind<hwy::float16_t, Floats> halves;
    const auto converted = hn::PromoteTo(Floats(), hn::BitCast(halves, hn::LoadU(Words(), words)));
    // The instruction makes signalling NaN quiet; the definition keeps them as they are.
    if (HWY_LIKELY(hn::AllFalse(Floats(), hn::IsNaN(converted)))) return converted;
#endif
    return fromBits(words);
  }
};

struct ReadRGBAFloat {
  static constexpr std::size_t kChannelBytes = 4;
  static HWY_INLINE FloatVector read(const std::uint8_t* in) {
    return hn::LoadU(Floats(), reinterpret_cast<const float*>(in));
  }
};

#if VORTO_BLOCK_OPS
// Clamped before it could overflow, and again where it is packed; NaN stays NaN here and becomes 0.
template <int largest>
HWY_INLINE hn::Vec<BlockWide> rounded(FloatVector v) {
  return roundedProduct<largest>(hn::Min(hn::Set(Floats(), 2.0f), v));
}

// Vectors that were packed into one, block by block, go back to their order.
template <std::size_t vectors, class D>
HWY_INLINE hn::Vec<D> inOrder(D d, hn::Vec<D> packed) {
  constexpr std::size_t kBlocks = sizeof(hn::TFromD<D>) * hn::MaxLanes(d) / 16;
  if constexpr (kBlocks == 1) return packed;
  using Index = hwy::MakeSigned<hn::TFromD<D> >;
  alignas(64) static constexpr auto indices = [] {
    std::array<Index, vectors * kBlocks> order{};
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = static_cast<Index>(i % kBlocks * vectors + i / kBlocks);
    return order;
  }();
  return hn::TableLookupLanes(packed, hn::SetTableIndices(d, indices.data()));
}

struct WriteARGB8 {
  static constexpr std::size_t kChannelBytes = 1;
  static constexpr std::size_t kVectors = 4;
  template <bool streamed>
  static HWY_INLINE void write(const FloatVector (&v)[4], std::uint8_t* out) {
    const auto bytes = packToBytes(packToIntegers(rounded<255>(v[0]), rounded<255>(v[1])),
                                   packToIntegers(rounded<255>(v[2]), rounded<255>(v[3])));
    const hn::Repartition<std::uint32_t, BlockBytes> pixels;
    const auto ordered = inOrder<4>(pixels, hn::BitCast(pixels, bytes));
    storeNext<streamed>(hn::BitCast(BlockBytes(), hn::RotateRight<24>(ordered)), BlockBytes(), out);
  }
};

struct WriteRGBA16 {
  static constexpr std::size_t kChannelBytes = 2;
  static constexpr std::size_t kVectors = 2;
  template <bool streamed>
  static HWY_INLINE void write(const FloatVector (&v)[2], std::uint8_t* out) {
    const auto words = packToWords(rounded<65535>(v[0]), rounded<65535>(v[1]));
    const hn::Repartition<std::uint64_t, BlockBytes> pixels;
    const auto ordered = inOrder<2>(pixels, hn::BitCast(pixels, words));
    storeNext<streamed>(hn::BitCast(BlockBytes(), ordered), BlockBytes(), out);
  }
};
#endif

struct WriteRGBAFloat {
  static constexpr std::size_t kChannelBytes = 4;
  static constexpr std::size_t kVectors = 1;
  template <bool streamed>
  static HWY_INLINE void write(const FloatVector (&v)[1], std::uint8_t* out) {
    storeNext<streamed>(v[0], Floats(), reinterpret_cast<float*>(out));
  }
};

constexpr std::uintptr_t kAhead = 2048;  // bytes at which wide channels are asked for

// Converts as many whole vectors as are written at once, again and again, and returns how many pixels those were.
template <bool streamed, class Write, class Read>
std::size_t convertVectors(std::uint8_t* out, const std::uint8_t* in, std::size_t count) {
  const std::size_t lanes = hn::Lanes(Floats());
  const std::size_t step = Write::kVectors * lanes;
  const std::size_t channels = count * 4 / step * step;
  for (std::size_t i = 0; i < channels; i += step) {
    FloatVector v[Write::kVectors];
    for (std::size_t k = 0; k < Write::kVectors; ++k) {
      const std::uint8_t* const place = in + (i + k * lanes) * Read::kChannelBytes;
      if constexpr (Read::kChannelBytes == 4) expectRead<kAhead>(place);
      v[k] = Read::read(place);
    }
    Write::template write<streamed>(v, out + i * Write::kChannelBytes);
  }
  return channels / 4;
}

using AllBytes = hn::ScalableTag<std::uint8_t>;
using AllWords = hn::ScalableTag<std::uint16_t>;

// RGBA8 to ARGB8: the value survives the way through a float.
template <bool streamed>
std::size_t reorderBytes(std::uint8_t* out, const std::uint8_t* in, std::size_t count) {
  const AllBytes d;
  const std::size_t bytes = count * 4 / hn::Lanes(d) * hn::Lanes(d);
  for (std::size_t i = 0; i < bytes; i += hn::Lanes(d)) {
    storeNext<streamed>(rotatePixels<24>(d, hn::LoadU(d, in + i)), d, out + i);
  }
  return bytes / 4;
}

// Bytes to words: 65535 / 255 is 257, so both bytes of the word are the byte.
template <bool streamed, bool fromARGB>
std::size_t widenBytes(std::uint8_t* out, const std::uint8_t* in, std::size_t count) {
  const AllWords d;
  const hn::Rebind<std::uint8_t, AllWords> bytesTag;
  const std::size_t channels = count * 4 / hn::Lanes(d) * hn::Lanes(d);
  for (std::size_t i = 0; i < channels; i += hn::Lanes(d)) {
    auto bytes = hn::LoadU(bytesTag, in + i);
    if constexpr (fromARGB) bytes = rotatePixels<8>(bytesTag, bytes);
    const auto words = hn::PromoteTo(d, bytes);
    storeNext<streamed>(hn::Or(words, hn::ShiftLeft<8>(words)), d, reinterpret_cast<std::uint16_t*>(out) + i);
  }
  return channels / 4;
}

#if VORTO_BLOCK_OPS
// Words to bytes: v / 257 rounded, which never is a half, in words without overflow.
HWY_INLINE hn::Vec<BlockIntegers> narrowed(const std::uint16_t* words) {
  const BlockWords d;
  const auto v = hn::SaturatedAdd(hn::LoadU(d, words), hn::Set(d, 128));
  return hn::BitCast(BlockIntegers(), hn::ShiftRight<8>(hn::Sub(v, hn::ShiftRight<8>(v))));
}

template <bool streamed>
std::size_t narrowWords(std::uint8_t* out, const std::uint8_t* in, std::size_t count) {
  const BlockBytes d;
  const hn::Repartition<std::uint64_t, BlockBytes> pairs;
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t channels = count * 4 / lanes * lanes;
  for (std::size_t i = 0; i < channels; i += lanes) {
    const auto* const words = reinterpret_cast<const std::uint16_t*>(in) + i;
    expectRead<kAhead>(words);
    expectRead<kAhead>(words + lanes / 2);
    const auto bytes = packToBytes(narrowed(words), narrowed(words + lanes / 2));
    const auto ordered = hn::BitCast(d, inOrder<2>(pairs, hn::BitCast(pairs, bytes)));
    storeNext<streamed>(rotatePixels<24>(d, ordered), d, out + i);
  }
  return channels / 4;
}
#endif

template <bool streamed, class Write>
std::size_t convertFrom(DepthLayout from, std::uint8_t* out, const std::uint8_t* in, std::size_t count) {
  switch (from) {
    case DepthLayout::RGBA8:
      return convertVectors<streamed, Write, ReadRGBA8>(out, in, count);
    case DepthLayout::ARGB8:
      return convertVectors<streamed, Write, ReadARGB8>(out, in, count);
    case DepthLayout::RGBA16:
      return convertVectors<streamed, Write, ReadRGBA16>(out, in, count);
    case DepthLayout::RGBAHalf:
      return convertVectors<streamed, Write, ReadRGBAHalf>(out, in, count);
    case DepthLayout::RGBAFloat:
      return convertVectors<streamed, Write, ReadRGBAFloat>(out, in, count);
  }
  return 0;
}

template <bool streamed>
std::size_t convertWhole(std::uint8_t* out, DepthLayout to, const std::uint8_t* in, DepthLayout from,
                         std::size_t count) {
  if (to == DepthLayout::ARGB8) {
    if (from == DepthLayout::RGBA8) return reorderBytes<streamed>(out, in, count);
#if VORTO_BLOCK_OPS
    if (from == DepthLayout::RGBA16) return narrowWords<streamed>(out, in, count);
    return convertFrom<streamed, WriteARGB8>(from, out, in, count);
#else
    return 0;
#endif
  }
  if (to == DepthLayout::RGBA16) {
    if (from == DepthLayout::RGBA8) return widenBytes<streamed, false>(out, in, count);
    if (from == DepthLayout::ARGB8) return widenBytes<streamed, true>(out, in, count);
#if VORTO_BLOCK_OPS
    return convertFrom<streamed, WriteRGBA16>(from, out, in, count);
#else
    return 0;
#endif
  }
  return convertFrom<streamed, WriteRGBAFloat>(from, out, in, count);
}

void convert(std::uint8_t* out, DepthLayout to, const std::uint8_t* in, DepthLayout from, std::size_t count,
             bool streamed) {
  const auto whole = streamed ? convertWhole<true> : convertWhole<false>;
  const std::size_t done = whole(out, to, in, from, count);
  if (streamed) finishStores<true>();
  convertDepthScalar(out + done * depthPixelBytes(to), to, in + done * depthPixelBytes(from), from, count - done);
}
#endif

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::kernels {

HWY_EXPORT(convert);

void convertDepth(std::uint8_t* out, DepthLayout to, const std::uint8_t* in, DepthLayout from, std::size_t count,
                  bool streamed) {
  if (useScalar()) return convertDepthScalar(out, to, in, from, count);
  if (to == from) return copyBytes(out, in, count * depthPixelBytes(to), streamed);
  const bool isAligned = reinterpret_cast<std::uintptr_t>(out) % 64 == 0;
  HWY_DYNAMIC_DISPATCH(convert)(out, to, in, from, count, streamed && isAligned);
}

void scaleAndConvert(const ScaleDestination& destination, DepthLayout to, const ScaleSource& source, DepthLayout from) {
  const std::size_t outBytes = depthPixelBytes(to);
  const std::size_t inBytes = depthPixelBytes(from);
  if (useScalar() || !isOrdinaryScale(destination, outBytes, source, inBytes)) {
    return scaleAndConvertScalar(destination, to, source, from);
  }
  if (to == from) return scaleNearest(destination, source, outBytes);
  if (destination.width == source.width && destination.height == source.height) {
    const std::size_t count = std::size_t{source.width} * source.height;
    return convertDepth(destination.pixels, to, source.pixels, from, count, isStreamed(count * outBytes));
  }
  if (to == DepthLayout::ARGB8 && from == DepthLayout::RGBA8) {
    return forEachScaledRow(destination, outBytes, source, inBytes, [](const ScaledRow& row) {
      gatherRGBA8ToARGB8(row.out, row.in, row.inPixels, row.columns, row.count);
    });
  }
  forEachScaledRow(destination, outBytes, source, inBytes, [&](const ScaledRow& row) {
    std::uint8_t gathered[16384];  // pixels, gathered on the stack and converted from there
    const auto chunk = static_cast<std::uint32_t>(sizeof gathered / inBytes);
    for (std::uint32_t first = 0; first < row.count; first += chunk) {
      const std::uint32_t count = std::min(chunk, row.count - first);
      gatherPixels(gathered, row.in, row.inPixels, row.columns + first, count, inBytes);
      convertDepth(row.out + first * outBytes, to, gathered, from, count, false);
    }
  });
}

}  // namespace vorto::kernels
#endif  // HWY_ONCE
