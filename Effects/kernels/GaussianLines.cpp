// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/GaussianLines.h"

#include "Effects/kernels/RowOfLayout.h"
#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/GaussianLines.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/FloatPixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
void filterLines(const GaussianFilter& filter, const float* in, float* out, std::size_t count, std::size_t lanes,
                 GaussianEdges edges) {
  gaussianLinesScalar(filter, in, out, count, lanes, edges);
}
template <class Channel>
void loadLines(const Channel* const* rows, std::size_t rowCount, std::size_t pixels, float* lines, std::size_t lanes) {
  gaussianLoadScalar(rows, rowCount, pixels, lines, lanes);
}
template <class Layout, class Channel>
void storeLines(const float* lines, std::size_t lanes, std::size_t rowCount, std::size_t pixels, Channel* out,
                std::size_t rowBytes) {
  gaussianStoreScalar<Layout>(lines, lanes, rowCount, pixels, out, rowBytes);
}
#else
// Some vectors of lines, which go side by side so that none waits for itself.
constexpr std::size_t kAbreast = 2;

struct State {
  hn::Vec<Floats> re, im;

  HWY_INLINE static State steady(const GaussianFilter::Pole& pole, hn::Vec<Floats> x, GaussianEdges edges) {
    const Floats d;
    if (edges == GaussianEdges::Transparent) return {hn::Zero(d), hn::Zero(d)};
    return {hn::Mul(x, hn::Set(d, pole.steady.re)), hn::Mul(x, hn::Set(d, pole.steady.im))};
  }
};

struct Factor {
  hn::Vec<Floats> re, im;

  HWY_INLINE explicit Factor(const GaussianFilter::Complex& value)
      : re(hn::Set(Floats(), value.re)), im(hn::Set(Floats(), value.im)) {}

  HWY_INLINE void step(State& s, hn::Vec<Floats> x) const {
    const auto real = hn::Add(x, hn::Sub(hn::Mul(re, s.re), hn::Mul(im, s.im)));
    s.im = hn::Add(hn::Mul(re, s.im), hn::Mul(im, s.re));
    s.re = real;
  }
  HWY_INLINE hn::Vec<Floats> real(const State& s) const { return hn::Sub(hn::Mul(re, s.re), hn::Mul(im, s.im)); }
};

void recursiveLines(const GaussianFilter& filter, const float* in, float* out, std::size_t count, std::size_t lanes,
                    GaussianEdges edges) {
  const Floats d;
  const std::size_t width = hn::Lanes(d);
  const GaussianFilter::Pole& first = filter.poles[0];
  const GaussianFilter::Pole& second = filter.poles[1];
  const Factor firstPole(first.pole), secondPole(second.pole);
  const Factor firstCausal(first.causal), secondCausal(second.causal);
  const Factor firstAnticausal(first.anticausal), secondAnticausal(second.anticausal);
  for (std::size_t lane = 0; lane < lanes; lane += kAbreast * width) {
    State a[kAbreast], b[kAbreast];
    const auto start = [&](const float* x) HWY_ATTR {
      for (std::size_t k = 0; k < kAbreast; ++k) {
        const auto value = hn::LoadU(d, x + k * width);
        a[k] = State::steady(first, value, edges);
        b[k] = State::steady(second, value, edges);
      }
    };
    start(in + lane);
    for (std::size_t i = 0; i < count; ++i) {
      const float* const x = in + i * lanes + lane;
      float* const y = out + i * lanes + lane;
      for (std::size_t k = 0; k < kAbreast; ++k) {
        const auto value = hn::LoadU(d, x + k * width);
        firstPole.step(a[k], value);
        secondPole.step(b[k], value);
        hn::StoreU(hn::Add(firstCausal.real(a[k]), secondCausal.real(b[k])), d, y + k * width);
      }
    }
    start(in + (count - 1) * lanes + lane);
    for (std::size_t i = count; i-- > 0;) {
      const float* const x = in + i * lanes + lane;
      float* const y = out + i * lanes + lane;
      for (std::size_t k = 0; k < kAbreast; ++k) {
        const auto added = hn::Add(firstAnticausal.real(a[k]), secondAnticausal.real(b[k]));
        hn::StoreU(hn::Add(hn::LoadU(d, y + k * width), added), d, y + k * width);
        const auto value = hn::LoadU(d, x + k * width);
        firstPole.step(a[k], value);
        secondPole.step(b[k], value);
      }
    }
  }
}

// Some values after one another of some vectors of lines.
template <std::size_t values, std::size_t abreast>
HWY_INLINE void weightedSums(const std::vector<float>& weights, const float* in, float* out, std::size_t lanes) {
  const Floats d;
  const std::size_t width = hn::Lanes(d);
  const std::size_t radius = weights.size() - 1;
  hn::Vec<Floats> sums[values][abreast];
  const auto middleWeight = hn::Set(d, weights[0]);
  for (std::size_t i = 0; i < values; ++i) {
    for (std::size_t k = 0; k < abreast; ++k) {
      sums[i][k] = hn::Mul(middleWeight, hn::LoadU(d, in + i * lanes + k * width));
    }
  }
  for (std::size_t step = 1; step <= radius; ++step) {
    const auto weight = hn::Set(d, weights[step]);
    const float* const before = in - step * lanes;
    const float* const after = in + step * lanes;
    for (std::size_t i = 0; i < values; ++i) {
      for (std::size_t k = 0; k < abreast; ++k) {
        const std::size_t at = i * lanes + k * width;
        const auto both = hn::Add(hn::LoadU(d, before + at), hn::LoadU(d, after + at));
        sums[i][k] = hn::Add(sums[i][k], hn::Mul(weight, both));
      }
    }
  }
  for (std::size_t i = 0; i < values; ++i) {
    for (std::size_t k = 0; k < abreast; ++k) hn::StoreU(sums[i][k], d, out + i * lanes + k * width);
  }
}

void weightedLines(const std::vector<float>& weights, const float* in, float* out, std::size_t count,
                   std::size_t lanes) {
  constexpr std::size_t kValues = 2;
  const std::size_t width = hn::Lanes(Floats());
  if (lanes == 4) {
    constexpr std::size_t kOfRow = 4;
    static_assert(4 * kGaussianRowPixels % (kOfRow * hn::MaxLanes(Floats())) == 0);
    for (std::size_t i = 0; i < count * lanes; i += kOfRow * width) {
      weightedSums<1, kOfRow>(weights, in + i, out + i, lanes);
    }
    return;
  }
  const std::size_t whole = count / kValues * kValues;
  for (std::size_t lane = 0; lane < lanes; lane += kAbreast * width) {
    for (std::size_t i = 0; i < whole; i += kValues) {
      weightedSums<kValues, kAbreast>(weights, in + i * lanes + lane, out + i * lanes + lane, lanes);
    }
    if (whole < count) {
      weightedSums<1, kAbreast>(weights, in + whole * lanes + lane, out + whole * lanes + lane, lanes);
    }
  }
}

void filterLines(const GaussianFilter& filter, const float* in, float* out, std::size_t count, std::size_t lanes,
                 GaussianEdges edges) {
  static_assert(kGaussianLanes % (kAbreast * hn::MaxLanes(Floats())) == 0);
  if (filter.weights.empty()) {
    recursiveLines(filter, in, out, count, lanes, edges);
  } else {
    weightedLines(filter.weights, in, out, count, lanes);
  }
}

// A pixel of four channels as floats.
using Pixel = hn::FixedTag<float, 4>;

template <class D, class Channel>
HWY_INLINE hn::Vec<D> loaded(D d, const Channel* channels) {
  return hn::Add(loadedFloats(d, channels), hn::Set(d, kGaussianFloor));
}

template <class D>
HWY_INLINE hn::Vec<D> loaded(D d, const float* channels) {
  const auto value = hn::LoadU(d, channels);
  const auto limited = hn::Min(hn::Max(value, hn::Set(d, -kGaussianCeiling)), hn::Set(d, kGaussianCeiling));
  return hn::Add(hn::IfThenElseZero(hn::Eq(value, value), limited), hn::Set(d, kGaussianFloor));
}

template <class Channel>
void loadLines(const Channel* const* rows, std::size_t rowCount, std::size_t pixels, float* lines, std::size_t lanes) {
  const Floats d;
  const Pixel pixel;
  std::size_t x = 0;
  if (rowCount == 1 && lanes == 4) {  // a row stays one
    const std::size_t step = hn::Lanes(d) / 4;
    for (; x + step <= pixels; x += step) hn::StoreU(loaded(d, rows[0] + 4 * x), d, lines + 4 * x);
  }
  for (; x < pixels; ++x) {
    for (std::size_t row = 0; row < rowCount; ++row) {
      hn::StoreU(loaded(pixel, rows[row] + 4 * x), pixel, lines + x * lanes + 4 * row);
    }
  }
}

template <class Layout, class D>
HWY_INLINE void storeVector(hn::Vec<D> v, D d, typename Layout::Channel* out) {
  if constexpr (std::is_same_v<Layout, RGBAFloat>) {
    v = hn::IfThenZeroElse(hn::Lt(hn::Abs(v), hn::Set(d, 2 * kGaussianFloor)), v);
  }
  storeFloats<Layout>(v, d, out);
}

// The lines of the caches that a row takes are far from the next row's.
constexpr std::size_t kStoresAhead = 8;

template <class Layout, class Channel>
void storeLines(const float* lines, std::size_t lanes, std::size_t rowCount, std::size_t pixels, Channel* out,
                std::size_t rowBytes) {
  const Floats d;
  const std::size_t width = hn::Lanes(d);
  for (std::size_t row = 0; row < rowCount; ++row, lines += lanes) {
    auto* const bytes = reinterpret_cast<std::uint8_t*>(out) + row * rowBytes;
    if (row + kStoresAhead < rowCount) hwy::Prefetch(bytes + kStoresAhead * rowBytes);
    auto* const place = reinterpret_cast<Channel*>(bytes);
    std::size_t i = 0;
    for (; i + width <= 4 * pixels; i += width) storeVector<Layout>(hn::LoadU(d, lines + i), d, place + i);
    for (; i < 4 * pixels; i += 4) storeVector<Layout>(hn::LoadU(Pixel(), lines + i), Pixel(), place + i);
  }
}
#endif

void loadBytes(const std::uint8_t* const* rows, std::size_t rowCount, std::size_t pixels, float* lines,
               std::size_t lanes) {
  loadLines(rows, rowCount, pixels, lines, lanes);
}
void loadWords(const std::uint16_t* const* rows, std::size_t rowCount, std::size_t pixels, float* lines,
               std::size_t lanes) {
  loadLines(rows, rowCount, pixels, lines, lanes);
}
void loadFloats(const float* const* rows, std::size_t rowCount, std::size_t pixels, float* lines, std::size_t lanes) {
  loadLines(rows, rowCount, pixels, lines, lanes);
}
void storeRGBA8(const float* lines, std::size_t lanes, std::size_t rowCount, std::size_t pixels, std::uint8_t* out,
                std::size_t rowBytes) {
  storeLines<RGBA8>(lines, lanes, rowCount, pixels, out, rowBytes);
}
void storeARGB8(const float* lines, std::size_t lanes, std::size_t rowCount, std::size_t pixels, std::uint8_t* out,
                std::size_t rowBytes) {
  storeLines<ARGB8>(lines, lanes, rowCount, pixels, out, rowBytes);
}
void storeWords(const float* lines, std::size_t lanes, std::size_t rowCount, std::size_t pixels, std::uint16_t* out,
                std::size_t rowBytes) {
  storeLines<RGBA16>(lines, lanes, rowCount, pixels, out, rowBytes);
}
void storeFloatRows(const float* lines, std::size_t lanes, std::size_t rowCount, std::size_t pixels, float* out,
                    std::size_t rowBytes) {
  storeLines<RGBAFloat>(lines, lanes, rowCount, pixels, out, rowBytes);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(filterLines);
HWY_EXPORT(loadBytes);
HWY_EXPORT(loadWords);
HWY_EXPORT(loadFloats);
HWY_EXPORT(storeRGBA8);
HWY_EXPORT(storeARGB8);
HWY_EXPORT(storeWords);
HWY_EXPORT(storeFloatRows);

void gaussianLines(const GaussianFilter& filter, const float* in, float* out, std::size_t count, std::size_t lanes,
                   GaussianEdges edges) {
  if (TCUsesScalarKernels()) return gaussianLinesScalar(filter, in, out, count, lanes, edges);
  HWY_DYNAMIC_DISPATCH(filterLines)(filter, in, out, count, lanes, edges);
}

template <class Channel>
void gaussianLoad(const Channel* const* rows, std::size_t rowCount, std::size_t pixels, float* lines,
                  std::size_t lanes) {
  if (TCUsesScalarKernels()) return gaussianLoadScalar(rows, rowCount, pixels, lines, lanes);
  if constexpr (std::is_same_v<Channel, std::uint8_t>) {
    HWY_DYNAMIC_DISPATCH(loadBytes)(rows, rowCount, pixels, lines, lanes);
  } else if constexpr (std::is_same_v<Channel, std::uint16_t>) {
    HWY_DYNAMIC_DISPATCH(loadWords)(rows, rowCount, pixels, lines, lanes);
  } else {
    HWY_DYNAMIC_DISPATCH(loadFloats)(rows, rowCount, pixels, lines, lanes);
  }
}

template <class Layout>
void gaussianStore(const float* lines, std::size_t lanes, std::size_t rowCount, std::size_t pixels,
                   typename Layout::Channel* out, std::size_t rowBytes) {
  if (TCUsesScalarKernels()) return gaussianStoreScalar<Layout>(lines, lanes, rowCount, pixels, out, rowBytes);
  const auto store = rowOfLayout<Layout>(HWY_DYNAMIC_DISPATCH(storeRGBA8), HWY_DYNAMIC_DISPATCH(storeARGB8),
                                         HWY_DYNAMIC_DISPATCH(storeWords), HWY_DYNAMIC_DISPATCH(storeFloatRows));
  store(lines, lanes, rowCount, pixels, out, rowBytes);
}

using Byte = std::uint8_t;
using Word = std::uint16_t;
template void gaussianLoad(const Byte* const*, std::size_t, std::size_t, float*, std::size_t);
template void gaussianLoad(const Word* const*, std::size_t, std::size_t, float*, std::size_t);
template void gaussianLoad(const float* const*, std::size_t, std::size_t, float*, std::size_t);
template void gaussianStore<RGBA8>(const float*, std::size_t, std::size_t, std::size_t, Byte*, std::size_t);
template void gaussianStore<ARGB8>(const float*, std::size_t, std::size_t, std::size_t, Byte*, std::size_t);
template void gaussianStore<RGBA16>(const float*, std::size_t, std::size_t, std::size_t, Word*, std::size_t);
template void gaussianStore<RGBAFloat>(const float*, std::size_t, std::size_t, std::size_t, float*, std::size_t);

}  // namespace vorto::effects
#endif
