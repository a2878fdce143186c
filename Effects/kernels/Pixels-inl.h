// SPDX-License-Identifier: BSD-3-Clause
// What the kernels of effects do with vectors of interleaved pixels. Included once for each target, hence no guard but
// this one.
#if defined(VORTO_PIXELS_TARGET) == defined(HWY_TARGET_TOGGLE)
#ifdef VORTO_PIXELS_TARGET
#undef VORTO_PIXELS_TARGET
#else
#define VORTO_PIXELS_TARGET
#endif

#include "TarnCore/TCKernelTarget.h"
#include "TarnCore/kernels/Stores-inl.h"

// Where vectors have one lane only, the definitions do everything.
#if HWY_TARGET != HWY_SCALAR
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
using kernels::HWY_NAMESPACE::expectWriteBehind;
using kernels::HWY_NAMESPACE::finishStores;
using kernels::HWY_NAMESPACE::isAlignedToVector;
using kernels::HWY_NAMESPACE::storeNext;

using Bytes = hn::ScalableTag<std::uint8_t>;
using Words = hn::Repartition<std::uint16_t, Bytes>;
using Integers = hn::Repartition<std::int16_t, Bytes>;
using Wides = hn::Repartition<std::uint32_t, Bytes>;
using Floats = hn::Repartition<float, Bytes>;
using Longs = hn::Repartition<std::uint64_t, Bytes>;
using Doubles = hn::Repartition<double, Bytes>;

// Bytes are computed with in words: those at even places in one vector, those at odd places in another. Results come
// back in the high byte of each word.
HWY_INLINE hn::Vec<Words> evenBytes(hn::Vec<Bytes> v) {
  const Words d;
  return hn::And(hn::BitCast(d, v), hn::Set(d, 0x00FF));
}
HWY_INLINE hn::Vec<Words> oddBytes(hn::Vec<Bytes> v) {
  return hn::ShiftRight<8>(hn::BitCast(Words(), v));
}
HWY_INLINE hn::Vec<Bytes> joinedHighBytes(hn::Vec<Words> even, hn::Vec<Words> odd) {
  const auto high = hn::Set(Words(), 0xFF00);
  return hn::BitCast(Bytes(), hn::OrAnd(hn::ShiftRight<8>(even), odd, high));
}

// The alpha of each pixel of four bytes in both of its words.
template <int alphaIndex>
HWY_INLINE hn::Vec<Words> alphaOfBytes(hn::Vec<Bytes> v) {
  constexpr std::uint8_t a = alphaIndex;
  alignas(16) static constexpr std::uint8_t spread[16] = {a,     128, a,     128, 4 + a,  128, 4 + a,  128,
                                                          8 + a, 128, 8 + a, 128, 12 + a, 128, 12 + a, 128};
  return hn::BitCast(Words(), hn::TableLookupBytesOr0(v, hn::LoadDup128(Bytes(), spread)));
}

// The alpha of each pixel of four words, the last one, in all of them.
HWY_INLINE hn::Vec<Words> alphaOfWords(hn::Vec<Words> v) {
  alignas(16) static constexpr std::uint8_t spread[16] = {6, 7, 6, 7, 6, 7, 6, 7, 14, 15, 14, 15, 14, 15, 14, 15};
  return hn::BitCast(Words(), hn::TableLookupBytes(hn::BitCast(Bytes(), v), hn::LoadDup128(Bytes(), spread)));
}

// The product of bytes, rounded to the nearest, in the high byte.
HWY_INLINE hn::Vec<Words> productOfBytes(hn::Vec<Words> a, hn::Vec<Words> b) {
  const auto n = hn::Add(hn::Mul(a, b), hn::Set(Words(), 128));
  return hn::Add(n, hn::ShiftRight<8>(n));
}

// All ones where the sum of `addend` and something else went beyond a word.
HWY_INLINE hn::Vec<Words> carryOf(hn::Vec<Words> sum, hn::Vec<Words> addend) {
  return hn::VecFromMask(Words(), hn::Lt(sum, addend));
}

// The product of words, rounded to the nearest: (n + (n >> 16)) >> 16 of n = a b + 32768 in its two halves.
HWY_INLINE hn::Vec<Words> productOfWords(hn::Vec<Words> a, hn::Vec<Words> b) {
  const auto exact = hn::Mul(a, b);
  const auto high = hn::Add(hn::MulHigh(a, b), hn::ShiftRight<15>(exact));
  const auto low = hn::Add(exact, hn::Set(Words(), 0x8000));
  return hn::Sub(high, carryOf(hn::Add(low, high), low));
}

// A byte of each pixel of four, in a lane of its own.
template <int index>
HWY_INLINE hn::Vec<Wides> byteOf(hn::Vec<Wides> pixels) {
  return hn::And(hn::ShiftRight<8 * index>(pixels), hn::Set(Wides(), 0xFF));
}

// A word of each pixel of four, in a lane of its own.
template <int index>
HWY_INLINE hn::Vec<Longs> wordOf(hn::Vec<Longs> pixels) {
  return hn::And(hn::ShiftRight<16 * index>(pixels), hn::Set(Longs(), 0xFFFF));
}

// Integers below 2 to the 52, which this adds to the bits of a double.
HWY_INLINE hn::Vec<Doubles> doubleOf(hn::Vec<Longs> v) {
  const auto magic = hn::Set(Doubles(), 0x1p52);
  return hn::Sub(hn::BitCast(Doubles(), hn::Or(v, hn::BitCast(Longs(), magic))), magic);
}

// The number of whole vectors in `count` pixels of four channels, in channels.
template <class D>
HWY_INLINE std::size_t wholeVectors(D d, std::size_t count) {
  return count * 4 / hn::Lanes(d) * hn::Lanes(d);
}

// Loops that do much with each pixel read so slowly that the processor itself does not read ahead.
template <class Channel>
HWY_INLINE void expectPixels(const Channel* in) {
  kernels::HWY_NAMESPACE::expectRead<2048>(in);
}

template <bool streamed, class D, class Make>
HWY_INLINE void storeEach(D d, hn::TFromD<D>* out, std::size_t whole, Make make) {
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d)) storeNext<streamed>(make(i), d, out + i);
  finishStores<streamed>();
}

// Makes as many of `count` pixels of four channels as whole vectors hold, make(i) the vector from channel i on, and
// returns how many. Many are written past the caches.
template <class D, class Make>
HWY_INLINE std::size_t storePixels(D d, hn::TFromD<D>* out, std::size_t count, Make make) {
  const std::size_t whole = wholeVectors(d, count);
  if (isAlignedToVector(out) && TCStreamsStores(whole * sizeof(hn::TFromD<D>))) {
    storeEach<true>(d, out, whole, make);
  } else {
    storeEach<false>(d, out, whole, make);
  }
  return whole / 4;
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
#endif
