// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Resample.h"

#include "Effects/kernels/RowOfLayout.h"
#include "TarnCore/TCKernelTarget.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Resample.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/FloatPixels-inl.h"
#include "Effects/kernels/PlanarPixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
template <class Layout, class Channel>
void resample(const ResampleSource<Channel>& in, const ResampleKernel& kernel, const ResamplePlaces& places,
              std::size_t first, std::size_t end, Channel* out) {
  resampleRowScalar<Layout>(in, kernel, places, first, end, out);
}
#else
// A pixel of four channels, and as many pixels of a kernel's columns as a vector holds.
using Pixel = hn::FixedTag<float, 4>;
using Columns = hn::CappedTag<float, 16>;

// Each weight in the lanes of its pixel.
template <class D>
HWY_INLINE hn::Vec<D> spreadWeights(D d, const float* weights) {
  const hn::RebindToSigned<D> di;
  const auto pixelOfLane = hn::IndicesFromVec(d, hn::ShiftRight<2>(hn::Iota(di, 0)));
  HWY_ALIGN float four[4];
  std::memcpy(four, weights, sizeof(four));
  return hn::TableLookupLanes(hn::LoadDup128(d, four), pixelOfLane);
}

// The halves of a vector added up until they are one pixel.
template <class D>
HWY_INLINE hn::Vec<Pixel> foldedPixel(D, hn::Vec<D> v) {
  if constexpr (hn::MaxLanes(D()) > 4) {
    const hn::Half<D> half;
    return foldedPixel(half, hn::Add(hn::LowerHalf(half, v), hn::UpperHalf(half, v)));
  } else {
    return v;
  }
}

// A pixel whose kernel lies in the image with all of its columns and rows.
template <class Layout, std::size_t columns, std::size_t rows>
HWY_INLINE void insidePixel(const typename Layout::Channel* corner, std::size_t rowBytes, const float* weightsX,
                            const float* weightsY, typename Layout::Channel* out) {
  const Columns d;
  constexpr std::size_t lanes = hn::MaxLanes(d);
  constexpr std::size_t vectors = 4 * columns / lanes;
  static_assert(vectors > 0);
  hn::Vec<Columns> sums[vectors];
  for (std::size_t k = 0; k < vectors; ++k) {
    sums[k] = hn::Mul(hn::Set(d, weightsY[0]), loadedFloats(d, corner + k * lanes));
  }
  for (std::size_t j = 1; j < rows; ++j) {
    const auto* const row =
        reinterpret_cast<const typename Layout::Channel*>(reinterpret_cast<const std::uint8_t*>(corner) + j * rowBytes);
    const auto weight = hn::Set(d, weightsY[j]);
    for (std::size_t k = 0; k < vectors; ++k) {
      sums[k] = hn::Add(sums[k], hn::Mul(weight, loadedFloats(d, row + k * lanes)));
    }
  }
  for (std::size_t k = 0; k < vectors; ++k) {
    sums[k] = hn::Mul(sums[k], spreadWeights(d, weightsX + k * lanes / 4));
    const std::size_t first = std::min(k * lanes, 4 * rows);
    // Columns that only fill the vector: what lies there is not multiplied away where it is no number.
    if (columns > rows) sums[k] = hn::IfThenElseZero(hn::FirstN(d, std::min(4 * rows - first, lanes)), sums[k]);
  }
  for (std::size_t half = vectors / 2; half > 0; half /= 2) {
    for (std::size_t k = 0; k < half; ++k) sums[k] = hn::Add(sums[k], sums[k + half]);
  }
  storeFloats<Layout>(foldedPixel(Columns(), sums[0]), Pixel(), out);
}

// The same of two columns and two rows, each weight where it is used.
template <class Layout>
HWY_INLINE void insideLinear(const typename Layout::Channel* corner, std::size_t rowBytes, float phaseX, float phaseY,
                             typename Layout::Channel* out) {
  const Pixel d;
  const auto* const below =
      reinterpret_cast<const typename Layout::Channel*>(reinterpret_cast<const std::uint8_t*>(corner) + rowBytes);
  const auto above = hn::Set(d, 1 - phaseY);
  const auto under = hn::Set(d, phaseY);
  const auto left = hn::Add(hn::Mul(above, loadedFloats(d, corner)), hn::Mul(under, loadedFloats(d, below)));
  const auto right = hn::Add(hn::Mul(above, loadedFloats(d, corner + 4)), hn::Mul(under, loadedFloats(d, below + 4)));
  const auto made = hn::Add(hn::Mul(left, hn::Set(d, 1 - phaseX)), hn::Mul(right, hn::Set(d, phaseX)));
  storeFloats<Layout>(made, d, out);
}

// Where the linear kernel lies for as many places as a vector has floats, on one axis.
struct LinearStarts {
  hn::Vec<hn::RebindToSigned<Floats> > first;
  hn::Vec<Floats> phase;

  HWY_INLINE LinearStarts(double start, double step, std::size_t index) {
    const hn::Rebind<float, Doubles> floats;
    const hn::Rebind<std::int32_t, Doubles> integers;
    const auto fromCenter = [&](std::size_t from) HWY_ATTR {
      const auto count = hn::Iota(Doubles(), static_cast<double>(from));
      const auto place = hn::Add(hn::Set(Doubles(), start), hn::Mul(count, hn::Set(Doubles(), step)));
      return hn::Sub(place, hn::Set(Doubles(), 0.5));
    };
    const auto low = fromCenter(index), high = fromCenter(index + hn::Lanes(Doubles()));
    const auto lowLeft = hn::Floor(low), highLeft = hn::Floor(high);
    first =
        hn::Combine(hn::RebindToSigned<Floats>(), hn::DemoteTo(integers, highLeft), hn::DemoteTo(integers, lowLeft));
    phase = hn::Combine(Floats(), hn::DemoteTo(floats, hn::Sub(high, highLeft)),
                        hn::DemoteTo(floats, hn::Sub(low, lowLeft)));
  }

  HWY_INLINE bool isWithin(std::int64_t last) const {
    const hn::RebindToSigned<Floats> d;
    const auto isBefore = hn::Lt(first, hn::Zero(d));
    return hn::AllFalse(d, hn::Or(isBefore, hn::Gt(first, hn::Set(d, static_cast<std::int32_t>(last)))));
  }
};

// The four neighbors of places, a channel at a time.
struct LinearBytes {
  hn::Vec<Wides> pixels[4];  // above left and right, below left and right
  hn::Vec<Floats> above, below, left, right;

  template <int index>
  HWY_INLINE hn::Vec<Floats> channel() const {
    const auto column = [&](int i) HWY_ATTR {
      return hn::Add(hn::Mul(above, byteAsFloat<index>(pixels[i])), hn::Mul(below, byteAsFloat<index>(pixels[i + 2])));
    };
    return hn::Add(hn::Mul(column(0), left), hn::Mul(column(1), right));
  }
};

// Pixels of bytes whose kernels lie in the image, from `first` on, in whole vectors; returns how many it made. Images
// of 2 GiB have places that no 32-bit offset reaches.
template <class Layout>
std::size_t linearBytes(const ResampleSource<std::uint8_t>& in, const ResamplePlaces& places, std::size_t first,
                        std::size_t end, std::uint8_t* out) {
  const Floats d;
  const Wides wides;
  const std::size_t lanes = hn::Lanes(d);
  if (in.rowBytes * static_cast<std::size_t>(in.height) >= std::size_t{1} << 31) return 0;
  const hn::RebindToSigned<Floats> di;
  const auto one = hn::Set(d, 1.0F);
  std::size_t i = first;
  for (; i + lanes <= end; i += lanes) {
    const LinearStarts x(places.x, places.stepX, i), y(places.y, places.stepY, i);
    if (!x.isWithin(in.width - 2) || !y.isWithin(in.height - 2)) break;
    const auto rows = hn::Mul(y.first, hn::Set(di, static_cast<std::int32_t>(in.rowBytes)));
    const auto offset = hn::Add(rows, hn::ShiftLeft<2>(x.first));
    const auto neighbor = [&](std::size_t bytes) HWY_ATTR {
      return hn::GatherOffset(wides, reinterpret_cast<const std::uint32_t*>(in.pixels + bytes), offset);
    };
    const LinearBytes linear{{neighbor(0), neighbor(4), neighbor(in.rowBytes), neighbor(in.rowBytes + 4)},
                             hn::Sub(one, y.phase),
                             y.phase,
                             hn::Sub(one, x.phase),
                             x.phase};
    storePlanar<Layout>({linear.channel<Layout::kRed>(), linear.channel<Layout::kGreen>(),
                         linear.channel<Layout::kBlue>(), linear.channel<Layout::kAlpha>()},
                        out + 4 * i);
  }
  return i - first;
}

template <class Layout, std::size_t columns, std::size_t rows, std::int64_t before>
void resamplePixels(const ResampleSource<typename Layout::Channel>& in, const ResampleKernel& kernel,
                    const ResamplePlaces& places, std::size_t first, std::size_t end, typename Layout::Channel* out) {
  const std::int64_t lastX = in.width - static_cast<std::int64_t>(columns);
  const std::int64_t lastY = in.height - static_cast<std::int64_t>(rows);
  for (std::size_t i = first; i < end; ++i) {
    if constexpr (columns == 2 && sizeof(typename Layout::Channel) == 1) {
      i += linearBytes<Layout>(in, places, i, end, out);
      if (i == end) break;
    }
    const ResampleStart startX(places.xOf(i), before), startY(places.yOf(i), before);
    if (startX.first < 0 || startX.first > lastX || startY.first < 0 || startY.first > lastY) {
      resampleRowScalar<Layout>(in, kernel, places, i, i + 1, out);
      continue;
    }
    const auto* const corner = in.at(startX.first, startY.first);
    if constexpr (columns == 2) {
      insideLinear<Layout>(corner, in.rowBytes, startX.phase, startY.phase, out + 4 * i);
    } else {
      const ResampleWeights<columns> weightsX(kernel, startX.phase);
      const ResampleWeights<columns> weightsY(kernel, startY.phase);
      insidePixel<Layout, columns, rows>(corner, in.rowBytes, weightsX.values, weightsY.values, out + 4 * i);
    }
  }
}

template <class Layout>
void widenedPixels(const ResampleSource<typename Layout::Channel>& in, const ResampleKernel& kernel,
                   const ResamplePlaces& places, std::size_t first, std::size_t end, typename Layout::Channel* out) {
  const Pixel d;
  std::int64_t firstX = 0, firstY = 0;
  std::vector<float> weightsX, weightsY;
  for (std::size_t i = first; i < end; ++i) {
    kernel.weightsAt(places.xOf(i), kernel.scaleX(), firstX, weightsX);
    if (i == first || places.stepY != 0) kernel.weightsAt(places.yOf(i), kernel.scaleY(), firstY, weightsY);
    const auto beginX = std::max<std::int64_t>(firstX, 0), beginY = std::max<std::int64_t>(firstY, 0);
    const auto endX = std::min(firstX + static_cast<std::int64_t>(weightsX.size()), in.width);
    const auto endY = std::min(firstY + static_cast<std::int64_t>(weightsY.size()), in.height);
    auto made = hn::Zero(d);
    for (std::int64_t row = beginY; row < endY; ++row) {
      auto sum = hn::Zero(d);
      for (std::int64_t column = beginX; column < endX; ++column) {
        const auto weight = hn::Set(d, weightsX[static_cast<std::size_t>(column - firstX)]);
        sum = hn::Add(sum, hn::Mul(weight, loadedFloats(d, in.at(column, row))));
      }
      made = hn::Add(made, hn::Mul(hn::Set(d, weightsY[static_cast<std::size_t>(row - firstY)]), sum));
    }
    storeFloats<Layout>(made, d, out + 4 * i);
  }
}

template <class Layout>
void resample(const ResampleSource<typename Layout::Channel>& in, const ResampleKernel& kernel,
              const ResamplePlaces& places, std::size_t first, std::size_t end, typename Layout::Channel* out) {
  if (kernel.isWidened()) {
    widenedPixels<Layout>(in, kernel, places, first, end, out);
  } else if (kernel.kind() == ResampleKernel::Kind::Linear) {
    resamplePixels<Layout, 2, 2, 0>(in, kernel, places, first, end, out);
  } else {
    resamplePixels<Layout, 8, 6, 2>(in, kernel, places, first, end, out);
  }
}
#endif

using ByteSource = ResampleSource<std::uint8_t>;
using WordSource = ResampleSource<std::uint16_t>;
using FloatSource = ResampleSource<float>;
void resampleRGBA8(const ByteSource& in, const ResampleKernel& kernel, const ResamplePlaces& places, std::size_t first,
                   std::size_t end, std::uint8_t* out) {
  resample<RGBA8>(in, kernel, places, first, end, out);
}
void resampleARGB8(const ByteSource& in, const ResampleKernel& kernel, const ResamplePlaces& places, std::size_t first,
                   std::size_t end, std::uint8_t* out) {
  resample<ARGB8>(in, kernel, places, first, end, out);
}
void resampleWords(const WordSource& in, const ResampleKernel& kernel, const ResamplePlaces& places, std::size_t first,
                   std::size_t end, std::uint16_t* out) {
  resample<RGBA16>(in, kernel, places, first, end, out);
}
void resampleFloats(const FloatSource& in, const ResampleKernel& kernel, const ResamplePlaces& places,
                    std::size_t first, std::size_t end, float* out) {
  resample<RGBAFloat>(in, kernel, places, first, end, out);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(resampleRGBA8);
HWY_EXPORT(resampleARGB8);
HWY_EXPORT(resampleWords);
HWY_EXPORT(resampleFloats);

template <class Layout>
void resampleRow(const ResampleSource<typename Layout::Channel>& in, const ResampleKernel& kernel,
                 const ResamplePlaces& places, std::size_t first, std::size_t end, typename Layout::Channel* out) {
  if (TCUsesScalarKernels()) return resampleRowScalar<Layout>(in, kernel, places, first, end, out);
  const auto row = rowOfLayout<Layout>(HWY_DYNAMIC_DISPATCH(resampleRGBA8), HWY_DYNAMIC_DISPATCH(resampleARGB8),
                                       HWY_DYNAMIC_DISPATCH(resampleWords), HWY_DYNAMIC_DISPATCH(resampleFloats));
  row(in, kernel, places, first, end, out);
}

using Byte = std::uint8_t;
using Word = std::uint16_t;
template void resampleRow<RGBA8>(const ResampleSource<Byte>&, const ResampleKernel&, const ResamplePlaces&, std::size_t,
                                 std::size_t, Byte*);
template void resampleRow<ARGB8>(const ResampleSource<Byte>&, const ResampleKernel&, const ResamplePlaces&, std::size_t,
                                 std::size_t, Byte*);
template void resampleRow<RGBA16>(const ResampleSource<Word>&, const ResampleKernel&, const ResamplePlaces&,
                                  std::size_t, std::size_t, Word*);
template void resampleRow<RGBAFloat>(const ResampleSource<float>&, const ResampleKernel&, const ResamplePlaces&,
                                     std::size_t, std::size_t, float*);

}  // namespace vorto::effects
#endif
