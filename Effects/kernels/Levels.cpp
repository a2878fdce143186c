// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Levels.h"

#include "Effects/kernels/RowOfLayout.h"
#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Levels.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/Pixels-inl.h"

// Each returns how many pixels it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

using ByteTables = LevelsTables<std::uint8_t>;
using WordTables = LevelsTables<std::uint16_t>;

#if HWY_TARGET == HWY_SCALAR
template <class Layout, class Channel>
std::size_t levelsVectors(Layout, const Channel*, Channel*, std::size_t, const LevelsTables<Channel>&) {
  return 0;
}
#else
// Pixels of bytes, one to a lane.
template <class Layout>
struct BytePixels {
  static constexpr Wides kLanes{};
  using Lanes = hn::Vec<Wides>;
  Lanes pixels, alpha;

  HWY_INLINE explicit BytePixels(Lanes loaded) : pixels(loaded), alpha(byteOf<Layout::kAlpha>(loaded)) {}

  HWY_INLINE static Lanes lookedUp(const LevelsTable<std::uint8_t>& table, Lanes index) {
    return hn::GatherIndex(kLanes, table.data(), hn::BitCast(hn::RebindToSigned<Wides>(), index));
  }
};

// Takes premultiplication off, (color 255 + alpha / 2) / alpha, cut off and at most 255: color times a factor and a
// summand. What is divided is half a unit more, which leaves the quotient 1/510 or more away from any integer: far more
// than floats err by, fused or not.
struct ByteStraightener {
  hn::Vec<Floats> factor, summand;

  HWY_INLINE explicit ByteStraightener(hn::Vec<Wides> alpha) {
    const Floats d;
    const auto wide = hn::BitCast(hn::RebindToSigned<Wides>(), alpha);
    // Where alpha is 0, the color stands for itself.
    const auto float32 = hn::ConvertTo(d, wide);
    const auto divisor = hn::IfThenElse(hn::Eq(float32, hn::Zero(d)), hn::Set(d, 255.0F), float32);
    const auto half = hn::Add(hn::ConvertTo(d, hn::ShiftRight<1>(wide)), hn::Set(d, 0.5F));
    const auto reciprocal = hn::Div(hn::Set(d, 1.0F), divisor);
    factor = hn::Mul(hn::Set(d, 255.0F), reciprocal);
    summand = hn::Mul(half, reciprocal);
  }

  HWY_INLINE hn::Vec<Wides> straight(hn::Vec<Wides> color) const {
    const Floats d;
    const hn::RebindToSigned<Wides> di;
    const auto quotient = hn::MulAdd(hn::ConvertTo(d, hn::BitCast(di, color)), factor, summand);
    return hn::BitCast(Wides(), hn::ConvertTo(di, hn::Min(quotient, hn::Set(d, 255.0F))));
  }
};

// The channels of pixels, in words: those at even places in one vector, those at odd places in another.
struct ByteChannels {
  hn::Vec<Wides> even, odd;

  HWY_INLINE ByteChannels() : even(hn::Zero(Wides())), odd(hn::Zero(Wides())) {}
  template <int place>
  HWY_INLINE void put(hn::Vec<Wides> channel) {
    auto& half = place % 2 == 0 ? even : odd;
    half = hn::Or(half, hn::ShiftLeft<16 * (place / 2)>(channel));
  }
  HWY_INLINE hn::Vec<Bytes> joined() const { return hn::BitCast(Bytes(), hn::Or(even, hn::ShiftLeft<8>(odd))); }
  HWY_INLINE hn::Vec<Bytes> times(hn::Vec<Wides> coverage) const {
    const Words d;
    const auto twice = hn::BitCast(d, hn::Or(coverage, hn::ShiftLeft<16>(coverage)));
    return joinedHighBytes(productOfBytes(hn::BitCast(d, even), twice), productOfBytes(hn::BitCast(d, odd), twice));
  }
};

template <class Layout, bool isOpaque>
HWY_INLINE hn::Vec<Bytes> levelsOfBytes(const BytePixels<Layout>& in, hn::Vec<Wides> newAlpha,
                                        const ByteTables& tables) {
  using Pixels = BytePixels<Layout>;
  const ByteStraightener straightener(in.alpha);
  const auto through = [&](hn::Vec<Wides> color, const LevelsTable<std::uint8_t>& table) HWY_ATTR {
    return Pixels::lookedUp(table, isOpaque ? color : straightener.straight(color));
  };
  ByteChannels made;
  made.put<Layout::kRed>(through(byteOf<Layout::kRed>(in.pixels), tables.red));
  made.put<Layout::kGreen>(through(byteOf<Layout::kGreen>(in.pixels), tables.green));
  made.put<Layout::kBlue>(through(byteOf<Layout::kBlue>(in.pixels), tables.blue));
  made.put<Layout::kAlpha>(hn::Set(Wides(), 255));
  if constexpr (isOpaque) return made.joined();
  const auto isEmpty = hn::Eq(hn::Or(in.alpha, newAlpha), hn::Zero(Wides()));
  const auto covered = hn::BitCast(Wides(), made.times(newAlpha));
  return hn::BitCast(Bytes(), hn::IfThenElse(isEmpty, in.pixels, covered));
}

template <class Layout>
std::size_t levelsVectors(Layout, const std::uint8_t* in, std::uint8_t* out, std::size_t count,
                          const ByteTables& tables) {
  const Bytes d;
  const Wides dp;
  const auto full = hn::Set(dp, 0xFF);
  const bool keepsAlpha = tables.keepsAlpha();
  return storePixels(d, out, count, [=, &tables](std::size_t i) HWY_ATTR {
    expectPixels(in + i);
    const BytePixels<Layout> pixels(hn::BitCast(dp, hn::LoadU(d, in + i)));
    const auto newAlpha = keepsAlpha ? pixels.alpha : BytePixels<Layout>::lookedUp(tables.alpha, pixels.alpha);
    const bool isOpaque = hn::AllTrue(dp, hn::Eq(hn::And(pixels.alpha, newAlpha), full));
    const bool isEmpty = hn::AllTrue(dp, hn::Eq(hn::Or(pixels.alpha, newAlpha), hn::Zero(dp)));
    if (isEmpty) return hn::BitCast(d, pixels.pixels);
    return isOpaque ? levelsOfBytes<Layout, true>(pixels, newAlpha, tables)
                    : levelsOfBytes<Layout, false>(pixels, newAlpha, tables);
  });
}

// Pixels of words, one to a lane.
HWY_INLINE hn::Vec<Longs> lookedUp(const LevelsTable<std::uint16_t>& table, hn::Vec<Longs> index) {
  // The three words that follow are read too, and cut off.
  const auto* const bytes = reinterpret_cast<const std::uint64_t*>(table.data());
  const auto offset = hn::BitCast(hn::RebindToSigned<Longs>(), hn::Add(index, index));
  return hn::And(hn::GatherOffset(Longs(), bytes, offset), hn::Set(Longs(), 0xFFFF));
}

// ByteStraightener of words, in doubles.
struct WordStraightener {
  hn::Vec<Doubles> reciprocal, half;

  HWY_INLINE explicit WordStraightener(hn::Vec<Longs> alpha) {
    const Longs d;
    const Doubles df;
    const auto divisor = doubleOf(hn::IfThenElse(hn::Eq(alpha, hn::Zero(d)), hn::Set(d, 0xFFFF), alpha));
    reciprocal = hn::Div(hn::Set(df, 1.0), divisor);
    half = hn::Add(doubleOf(hn::ShiftRight<1>(alpha)), hn::Set(df, 0.5));
  }

  HWY_INLINE hn::Vec<Longs> straight(hn::Vec<Longs> color) const {
    const Doubles d;
    const hn::Rebind<std::int32_t, Doubles> di;
    const auto n = doubleOf(hn::Sub(hn::ShiftLeft<16>(color), color));
    const auto quotient = hn::Min(hn::Mul(hn::Add(n, half), reciprocal), hn::Set(d, 65535.0));
    return hn::BitCast(Longs(), hn::PromoteTo(hn::RebindToSigned<Longs>(), hn::DemoteTo(di, quotient)));
  }
};

template <bool isOpaque>
HWY_INLINE hn::Vec<Longs> levelsOfWords(hn::Vec<Longs> pixels, hn::Vec<Longs> newAlpha, const WordTables& tables) {
  const Longs d;
  const auto alpha = wordOf<RGBA16::kAlpha>(pixels);
  const WordStraightener straightener(alpha);
  const auto through = [&](hn::Vec<Longs> color, const LevelsTable<std::uint16_t>& table)
                           HWY_ATTR { return lookedUp(table, isOpaque ? color : straightener.straight(color)); };
  const auto red = through(wordOf<RGBA16::kRed>(pixels), tables.red);
  const auto green = hn::ShiftLeft<16>(through(wordOf<RGBA16::kGreen>(pixels), tables.green));
  const auto blue = hn::ShiftLeft<32>(through(wordOf<RGBA16::kBlue>(pixels), tables.blue));
  const auto opaque = hn::Or(hn::Or(hn::Or(red, green), blue), hn::Set(d, std::uint64_t{0xFFFF} << 48));
  if constexpr (isOpaque) return opaque;
  const auto coverage = alphaOfWords(hn::BitCast(Words(), hn::ShiftLeft<48>(newAlpha)));
  const auto made = hn::BitCast(d, productOfWords(hn::BitCast(Words(), opaque), coverage));
  return hn::IfThenElse(hn::Eq(hn::Or(alpha, newAlpha), hn::Zero(d)), pixels, made);
}

std::size_t levelsVectors(RGBA16, const std::uint16_t* in, std::uint16_t* out, std::size_t count,
                          const WordTables& tables) {
  const Words d;
  const Longs dp;
  const auto full = hn::Set(dp, 0xFFFF);
  const bool keepsAlpha = tables.keepsAlpha();
  return storePixels(d, out, count, [=, &tables](std::size_t i) HWY_ATTR {
    expectPixels(in + i);
    const auto pixels = hn::BitCast(dp, hn::LoadU(d, in + i));
    const auto alpha = wordOf<RGBA16::kAlpha>(pixels);
    const auto newAlpha = keepsAlpha ? alpha : lookedUp(tables.alpha, alpha);
    const bool isOpaque = hn::AllTrue(dp, hn::Eq(hn::And(alpha, newAlpha), full));
    const bool isEmpty = hn::AllTrue(dp, hn::Eq(hn::Or(alpha, newAlpha), hn::Zero(dp)));
    if (isEmpty) return hn::BitCast(d, pixels);
    return hn::BitCast(
        d, isOpaque ? levelsOfWords<true>(pixels, newAlpha, tables) : levelsOfWords<false>(pixels, newAlpha, tables));
  });
}
#endif

std::size_t levelsRGBA8(const std::uint8_t* in, std::uint8_t* out, std::size_t count, const ByteTables& tables) {
  return levelsVectors(RGBA8(), in, out, count, tables);
}
std::size_t levelsARGB8(const std::uint8_t* in, std::uint8_t* out, std::size_t count, const ByteTables& tables) {
  return levelsVectors(ARGB8(), in, out, count, tables);
}
std::size_t levelsWords(const std::uint16_t* in, std::uint16_t* out, std::size_t count, const WordTables& tables) {
  return levelsVectors(RGBA16(), in, out, count, tables);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(levelsRGBA8);
HWY_EXPORT(levelsARGB8);
HWY_EXPORT(levelsWords);

template <class Layout>
void levelsRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
               const LevelsTables<typename Layout::Channel>& tables) {
  const auto vectors = rowOfLayout<Layout>(HWY_DYNAMIC_DISPATCH(levelsRGBA8), HWY_DYNAMIC_DISPATCH(levelsARGB8),
                                           HWY_DYNAMIC_DISPATCH(levelsWords));
  const std::size_t done = TCUsesScalarKernels() ? 0 : vectors(in, out, count, tables);
  levelsRowScalar<Layout>(in + 4 * done, out + 4 * done, count - done, tables);
}

template void levelsRow<RGBA8>(const std::uint8_t*, std::uint8_t*, std::size_t, const LevelsTables<std::uint8_t>&);
template void levelsRow<ARGB8>(const std::uint8_t*, std::uint8_t*, std::size_t, const LevelsTables<std::uint8_t>&);
template void levelsRow<RGBA16>(const std::uint16_t*, std::uint16_t*, std::size_t, const LevelsTables<std::uint16_t>&);

}  // namespace vorto::effects
#endif
