// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Mix.h"

#include "TarnCore/TCKernelTarget.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Mix.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/Pixels-inl.h"

// Each returns how many pixels it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
std::size_t mixBytes(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t, std::uint32_t) {
  return 0;
}
std::size_t mixWords(const std::uint16_t*, const std::uint16_t*, std::uint16_t*, std::size_t, std::uint32_t) {
  return 0;
}
std::size_t mixFloats(const float*, const float*, float*, std::size_t, float) {
  return 0;
}
std::size_t mixBytePixels(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t, const std::uint32_t*) {
  return 0;
}
std::size_t mixWordPixels(const std::uint16_t*, const std::uint16_t*, std::uint16_t*, std::size_t,
                          const std::uint32_t*) {
  return 0;
}
std::size_t mixFloatPixels(const float*, const float*, float*, std::size_t, const float*) {
  return 0;
}
#else
// a + (b - a) w / 65536, rounded, of bytes in words. `weight` is the low half of w, which signed words take for 65536
// less when w is half or more; then `nearer` is b instead of a, which makes up for it.
HWY_INLINE hn::Vec<Words> mixedBytes(hn::Vec<Words> a, hn::Vec<Words> b, hn::Vec<Words> nearer,
                                     hn::Vec<Integers> weight) {
  const Integers d;
  const auto difference = hn::BitCast(d, hn::Sub(b, a));
  const auto low = hn::BitCast(Words(), hn::Mul(difference, weight));
  const auto high = hn::BitCast(Words(), hn::MulHigh(difference, weight));
  return hn::Add(hn::Add(nearer, high), hn::ShiftRight<15>(low));
}

// The weights of pixels of four bytes, a lane each.
struct ByteWeights {
  hn::Vec<Wides> weight;

  HWY_INLINE hn::Vec<Bytes> mixed(hn::Vec<Bytes> a, hn::Vec<Bytes> b) const {
    const Wides d;
    const auto isUnderHalf = hn::Eq(hn::ShiftRight<15>(weight), hn::Zero(d));
    const auto nearer = hn::IfThenElse(isUnderHalf, hn::BitCast(d, a), hn::BitCast(d, b));
    const auto low = hn::And(weight, hn::Set(d, 0xFFFF));
    const auto twice = hn::BitCast(Integers(), hn::Or(low, hn::ShiftLeft<16>(weight)));
    const auto even = mixedBytes(evenBytes(a), evenBytes(b), evenBytes(hn::BitCast(Bytes(), nearer)), twice);
    const auto odd = mixedBytes(oddBytes(a), oddBytes(b), oddBytes(hn::BitCast(Bytes(), nearer)), twice);
    return hn::BitCast(Bytes(), hn::Or(even, hn::ShiftLeft<8>(odd)));
  }
};

// (a (65536 - w) + b w + 32768) / 65536 of words, from the products' halves. At 0 and 65536 the weight is no word.
struct WordWeights {
  hn::Vec<Words> low;   // of the weight; 0 at either end
  hn::Vec<Words> high;  // 1 at 65536, else 0

  HWY_INLINE hn::Vec<Words> mixed(hn::Vec<Words> a, hn::Vec<Words> b) const {
    const Words d;
    const auto zero = hn::Zero(d);
    const auto rest = hn::Sub(zero, low);
    const auto lowOfB = hn::Mul(b, low);
    const auto lowSum = hn::Add(hn::Mul(a, rest), lowOfB);
    const auto highSum = hn::Add(hn::MulHigh(a, rest), hn::MulHigh(b, low));
    const auto between = hn::Add(hn::Sub(highSum, carryOf(lowSum, lowOfB)), hn::ShiftRight<15>(lowSum));
    const auto end = hn::IfThenElse(hn::Eq(high, zero), a, b);
    return hn::IfThenElse(hn::Eq(low, zero), end, between);
  }
};

struct FloatWeights {
  hn::Vec<Floats> weight;

  HWY_INLINE hn::Vec<Floats> mixed(hn::Vec<Floats> a, hn::Vec<Floats> b) const {
    const Floats d;
    const auto one = hn::Set(d, 1.0F);
    const auto between = hn::Add(hn::Mul(a, hn::Sub(one, weight)), hn::Mul(b, weight));
    return hn::IfThenElse(hn::Le(weight, hn::Zero(d)), a, hn::IfThenElse(hn::Ge(weight, one), b, between));
  }
};

HWY_INLINE ByteWeights weightsOf(Bytes, std::uint32_t weight) {
  return {hn::Set(Wides(), weight)};
}
HWY_INLINE WordWeights weightsOf(Words d, std::uint32_t weight) {
  return {hn::Set(d, static_cast<std::uint16_t>(weight)), hn::Set(d, static_cast<std::uint16_t>(weight >> 16))};
}
HWY_INLINE FloatWeights weightsOf(Floats d, float weight) {
  return {hn::Set(d, weight)};
}

template <class D, class Weight>
std::size_t mixVectors(D d, const hn::TFromD<D>* a, const hn::TFromD<D>* b, hn::TFromD<D>* out, std::size_t count,
                       Weight weight) {
  const auto weights = weightsOf(d, weight);
  return storePixels(d, out, count,
                     [=](std::size_t i) HWY_ATTR { return weights.mixed(hn::LoadU(d, a + i), hn::LoadU(d, b + i)); });
}

std::size_t mixBytes(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t count,
                     std::uint32_t weight) {
  return mixVectors(Bytes(), a, b, out, count, weight);
}
std::size_t mixWords(const std::uint16_t* a, const std::uint16_t* b, std::uint16_t* out, std::size_t count,
                     std::uint32_t weight) {
  return mixVectors(Words(), a, b, out, count, weight);
}
std::size_t mixFloats(const float* a, const float* b, float* out, std::size_t count, float weight) {
  return mixVectors(Floats(), a, b, out, count, weight);
}

std::size_t mixBytePixels(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t count,
                          const std::uint32_t* weights) {
  const Bytes d;
  return storePixels(d, out, count, [=](std::size_t i) HWY_ATTR {
    const ByteWeights here{hn::LoadU(Wides(), weights + i / 4)};
    return here.mixed(hn::LoadU(d, a + i), hn::LoadU(d, b + i));
  });
}

// The weights of the pixels in a vector, the halves of each in the four words of its pixel.
HWY_INLINE WordWeights wordWeightsAt(const std::uint32_t* weights) {
  alignas(16) static constexpr std::uint8_t low[16] = {0, 1, 0, 1, 0, 1, 0, 1, 8, 9, 8, 9, 8, 9, 8, 9};
  alignas(16) static constexpr std::uint8_t high[16] = {2, 3, 2, 3, 2, 3, 2, 3, 10, 11, 10, 11, 10, 11, 10, 11};
  const hn::Repartition<std::uint64_t, Bytes> pixels;
  const auto wide =
      hn::BitCast(Bytes(), hn::PromoteTo(pixels, hn::LoadU(hn::Rebind<std::uint32_t, decltype(pixels)>(), weights)));
  return {hn::BitCast(Words(), hn::TableLookupBytes(wide, hn::LoadDup128(Bytes(), low))),
          hn::BitCast(Words(), hn::TableLookupBytes(wide, hn::LoadDup128(Bytes(), high)))};
}

std::size_t mixWordPixels(const std::uint16_t* a, const std::uint16_t* b, std::uint16_t* out, std::size_t count,
                          const std::uint32_t* weights) {
  const Words d;
  return storePixels(d, out, count, [=](std::size_t i) HWY_ATTR {
    const WordWeights here = wordWeightsAt(weights + i / 4);
    return here.mixed(hn::LoadU(d, a + i), hn::LoadU(d, b + i));
  });
}

// A vector of weights for every four vectors of channels.
std::size_t mixFloatPixels(const float* a, const float* b, float* out, std::size_t count, const float* weights) {
  const Floats d;
  const hn::RebindToSigned<Floats> di;
  const std::size_t lanes = hn::Lanes(d);
  const auto pixelOfLane = hn::ShiftRight<2>(hn::Iota(di, 0));
  const std::size_t whole = count / lanes * lanes;
  for (std::size_t pixel = 0; pixel < whole; pixel += lanes) {
    const auto all = hn::LoadU(d, weights + pixel);
    for (std::size_t part = 0; part < 4; ++part) {
      const auto first = hn::Set(di, static_cast<std::int32_t>(part * lanes / 4));
      const FloatWeights here{hn::TableLookupLanes(all, hn::IndicesFromVec(d, hn::Add(pixelOfLane, first)))};
      const std::size_t i = 4 * pixel + part * lanes;
      storeNext<false>(here.mixed(hn::LoadU(d, a + i), hn::LoadU(d, b + i)), d, out + i);
    }
  }
  return whole;
}

#endif

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(mixBytes);
HWY_EXPORT(mixWords);
HWY_EXPORT(mixFloats);
HWY_EXPORT(mixBytePixels);
HWY_EXPORT(mixWordPixels);
HWY_EXPORT(mixFloatPixels);

template <class Channel>
void mixRow(const Channel* a, const Channel* b, Channel* out, std::size_t count, MixWeight<Channel> weight) {
  if (TCUsesScalarKernels()) return mixRowScalar(a, b, out, count, weight);
  std::size_t done = 0;
  if constexpr (std::is_same_v<Channel, std::uint8_t>) {
    done = HWY_DYNAMIC_DISPATCH(mixBytes)(a, b, out, count, weight);
  } else if constexpr (std::is_same_v<Channel, std::uint16_t>) {
    done = HWY_DYNAMIC_DISPATCH(mixWords)(a, b, out, count, weight);
  } else {
    done = HWY_DYNAMIC_DISPATCH(mixFloats)(a, b, out, count, weight);
  }
  mixRowScalar(a + 4 * done, b + 4 * done, out + 4 * done, count - done, weight);
}

template <class Channel>
void mixPixels(const Channel* a, const Channel* b, Channel* out, std::size_t count, const MixWeight<Channel>* weights) {
  if (TCUsesScalarKernels()) return mixPixelsScalar(a, b, out, count, weights);
  std::size_t done = 0;
  if constexpr (std::is_same_v<Channel, std::uint8_t>) {
    done = HWY_DYNAMIC_DISPATCH(mixBytePixels)(a, b, out, count, weights);
  } else if constexpr (std::is_same_v<Channel, std::uint16_t>) {
    done = HWY_DYNAMIC_DISPATCH(mixWordPixels)(a, b, out, count, weights);
  } else {
    done = HWY_DYNAMIC_DISPATCH(mixFloatPixels)(a, b, out, count, weights);
  }
  mixPixelsScalar(a + 4 * done, b + 4 * done, out + 4 * done, count - done, weights + done);
}

template void mixRow(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t, std::uint32_t);
template void mixRow(const std::uint16_t*, const std::uint16_t*, std::uint16_t*, std::size_t, std::uint32_t);
template void mixRow(const float*, const float*, float*, std::size_t, float);
template void mixPixels(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t, const std::uint32_t*);
template void mixPixels(const std::uint16_t*, const std::uint16_t*, std::uint16_t*, std::size_t, const std::uint32_t*);
template void mixPixels(const float*, const float*, float*, std::size_t, const float*);

}  // namespace vorto::effects
#endif
