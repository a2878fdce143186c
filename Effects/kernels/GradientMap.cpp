// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/GradientMap.h"

#include "Effects/kernels/RowOfLayout.h"
#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/GradientMap.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/PlanarPixels-inl.h"

// Each returns how many pixels it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
template <class Layout, class Channel>
std::size_t mapVectors(Layout, const Channel*, Channel*, std::size_t, const MapTable<Layout>&) {
  return 0;
}
#else
// Of straight color: the sum of the weighted channels, 65536ths of a unit.
template <class Layout>
HWY_INLINE hn::Vec<Wides> lumaOfBytes(hn::Vec<Wides> pixels) {
  const Wides d;
  const auto red = hn::Mul(byteOf<Layout::kRed>(pixels), hn::Set(d, kRedWeight));
  const auto green = hn::Mul(byteOf<Layout::kGreen>(pixels), hn::Set(d, kGreenWeight));
  const auto blue = hn::Mul(byteOf<Layout::kBlue>(pixels), hn::Set(d, kBlueWeight));
  return hn::Add(hn::Add(red, green), blue);
}

// Quotients below 512 of numbers that floats hold are cut off right: one that is no integer is 1/255 or more away from
// the next.
template <class Layout>
HWY_INLINE hn::Vec<Wides> straightLumaOfBytes(hn::Vec<Wides> pixels, hn::Vec<Wides> alpha) {
  const Floats df;
  const hn::RebindToSigned<Wides> di;
  const auto sum = lumaOfBytes<Layout>(pixels);
  const auto scaled = hn::Add(hn::Sub(hn::ShiftLeft<8>(sum), sum), hn::ShiftLeft<15>(alpha));
  const auto n = hn::ConvertTo(df, hn::BitCast(di, hn::ShiftRight<16>(scaled)));
  // Without alpha it is any index of the table: the color will be multiplied by 0.
  const auto divisor = hn::Max(hn::ConvertTo(df, hn::BitCast(di, alpha)), hn::Set(df, 1.0F));
  return hn::BitCast(Wides(), hn::ConvertTo(di, hn::Min(hn::Div(n, divisor), hn::Set(df, 255.0F))));
}

template <class Layout>
HWY_INLINE hn::Vec<Wides> mappedBytes(const LaidPixel<Layout>* entries, hn::Vec<Wides> index) {
  const auto* const colors = reinterpret_cast<const std::uint32_t*>(entries);
  return hn::GatherIndex(Wides(), colors, hn::BitCast(hn::RebindToSigned<Wides>(), index));
}

template <class Layout>
HWY_INLINE hn::Vec<Bytes> coveredBytes(hn::Vec<Wides> color, hn::Vec<Wides> alpha) {
  const Words dw;
  const auto covered = productOfBytes(hn::BitCast(dw, byteOf<Layout::kAlpha>(color)), hn::BitCast(dw, alpha));
  const auto coverage = byteOf<1>(hn::BitCast(Wides(), covered));
  const auto twice = hn::BitCast(dw, hn::Or(coverage, hn::ShiftLeft<16>(coverage)));
  const auto opaque = hn::BitCast(Bytes(), hn::Or(color, hn::Set(Wides(), 0xFFU << (8 * Layout::kAlpha))));
  return joinedHighBytes(productOfBytes(evenBytes(opaque), twice), productOfBytes(oddBytes(opaque), twice));
}

template <class Layout>
std::size_t mapVectors(Layout, const std::uint8_t* in, std::uint8_t* out, std::size_t count,
                       const MapTable<Layout>& table) {
  const Bytes d;
  const Wides dp;
  const auto full = hn::Set(dp, 0xFF);
  const auto half = hn::Set(dp, 0x8000);
  const LaidPixel<Layout>* const entries = table.entries.data();
  return storePixels(d, out, count, [=, &table](std::size_t i) HWY_ATTR {
    expectPixels(in + i);
    const auto pixels = hn::BitCast(dp, hn::LoadU(d, in + i));
    const auto alpha = byteOf<Layout::kAlpha>(pixels);
    if (table.isOpaque && hn::AllTrue(dp, hn::Eq(alpha, full))) {
      const auto luma = hn::ShiftRight<16>(hn::Add(lumaOfBytes<Layout>(pixels), half));
      return hn::BitCast(d, mappedBytes<Layout>(entries, luma));
    }
    if (hn::AllTrue(dp, hn::Eq(alpha, hn::Zero(dp)))) return hn::Zero(d);
    const auto luma = straightLumaOfBytes<Layout>(pixels, alpha);
    return coveredBytes<Layout>(mappedBytes<Layout>(entries, luma), alpha);
  });
}

// A word of each pixel, weighted.
template <int index>
HWY_INLINE hn::Vec<Longs> weightedWord(hn::Vec<Longs> pixels, std::uint32_t weight) {
  return hn::MulEven(hn::BitCast(Wides(), wordOf<index>(pixels)), hn::Set(Wides(), weight));
}

// Of straight color, 65536ths of a unit.
HWY_INLINE hn::Vec<Longs> lumaOfWords(hn::Vec<Longs> pixels) {
  const auto red = weightedWord<RGBA16::kRed>(pixels, kRedWeight);
  const auto green = weightedWord<RGBA16::kGreen>(pixels, kGreenWeight);
  return hn::Add(hn::Add(red, green), weightedWord<RGBA16::kBlue>(pixels, kBlueWeight));
}

HWY_INLINE hn::Vec<Longs> straightLumaOfWords(hn::Vec<Longs> pixels, hn::Vec<Longs> alpha) {
  const Doubles d;
  const hn::Rebind<std::int32_t, Doubles> di;
  const auto sum = lumaOfWords(pixels);
  const auto scaled = hn::Add(hn::Sub(hn::ShiftLeft<16>(sum), sum), hn::ShiftLeft<15>(alpha));
  // Divided by 65536 and by alpha at once, and cut off: nothing that is no integer rounds to one. Without alpha it is
  // any index of the table.
  const auto divisor = hn::Max(doubleOf(hn::ShiftLeft<16>(alpha)), hn::Set(d, 1.0));
  const auto luma = hn::Min(hn::Div(doubleOf(scaled), divisor), hn::Set(d, 65535.0));
  return hn::BitCast(Longs(), hn::PromoteTo(hn::RebindToSigned<Longs>(), hn::DemoteTo(di, luma)));
}

HWY_INLINE hn::Vec<Longs> mappedWords(const LaidPixel<RGBA16>* entries, hn::Vec<Longs> index) {
  const auto* const colors = reinterpret_cast<const std::uint64_t*>(entries);
  return hn::GatherIndex(Longs(), colors, hn::BitCast(hn::RebindToSigned<Longs>(), index));
}

std::size_t mapVectors(RGBA16, const std::uint16_t* in, std::uint16_t* out, std::size_t count,
                       const MapTable<RGBA16>& table) {
  const Words d;
  const Longs dp;
  const auto full = hn::Set(dp, 0xFFFF);
  const auto half = hn::Set(dp, 0x8000);
  const auto alphaWord = hn::Set(dp, std::uint64_t{0xFFFF} << 48);
  return storePixels(d, out, count, [=, &table](std::size_t i) HWY_ATTR {
    expectPixels(in + i);
    const auto pixels = hn::BitCast(dp, hn::LoadU(d, in + i));
    const auto alpha = hn::ShiftRight<48>(pixels);
    if (table.isOpaque && hn::AllTrue(dp, hn::Eq(alpha, full))) {
      const auto luma = hn::ShiftRight<16>(hn::Add(lumaOfWords(pixels), half));
      return hn::BitCast(d, mappedWords(table.entries.data(), luma));
    }
    if (hn::AllTrue(dp, hn::Eq(alpha, hn::Zero(dp)))) return hn::Zero(d);
    const auto color = mappedWords(table.entries.data(), straightLumaOfWords(pixels, alpha));
    const auto covered = productOfWords(alphaOfWords(hn::BitCast(d, color)), alphaOfWords(hn::BitCast(d, pixels)));
    return productOfWords(hn::BitCast(d, hn::Or(color, alphaWord)), covered);
  });
}

// First the places of a vector of pixels in the table, then one pixel after the other.
std::size_t mapVectors(RGBAFloat, const float* in, float* out, std::size_t count, const MapTable<RGBAFloat>& table) {
  const Floats d;
  const hn::RebindToSigned<Floats> di;
  const hn::FixedTag<float, 4> pixel;
  const auto* const entries = table.entries.data()->data();
  const auto zero = hn::Zero(d);
  const auto one = hn::Set(d, 1.0F);
  const auto isColor = hn::FirstN(pixel, 3);
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  HWY_ALIGN std::int32_t indices[hn::MaxLanes(d)];
  HWY_ALIGN float parts[hn::MaxLanes(d)];
  for (std::size_t i = 0; i < whole; i += lanes) {
    const Planar p = loadPlanar<RGBAFloat>(in + 4 * i);
    const auto sum = hn::Add(hn::Add(hn::Mul(hn::Set(d, 0.2126F), p.red), hn::Mul(hn::Set(d, 0.7152F), p.green)),
                             hn::Mul(hn::Set(d, 0.0722F), p.blue));
    const auto luma = hn::Div(sum, p.alpha);
    const auto below = hn::IfThenElse(hn::Lt(luma, one), luma, one);
    const auto clamped = hn::IfThenElseZero(hn::Gt(luma, zero), below);
    const auto place = hn::Mul(clamped, hn::Set(d, static_cast<float>(kGradientSteps - 1)));
    const auto index = hn::ConvertTo(di, place);
    hn::Store(index, di, indices);
    hn::Store(hn::Sub(place, hn::ConvertTo(d, index)), d, parts);
    for (std::size_t lane = 0; lane < lanes; ++lane) {
      const float* const entry = entries + 4 * static_cast<std::size_t>(indices[lane]);
      const float pixelAlpha = in[4 * (i + lane) + 3];
      const auto left = hn::LoadU(pixel, entry);
      const auto right = hn::LoadU(pixel, entry + 4);
      const auto color = hn::Add(left, hn::Mul(hn::Sub(right, left), hn::Set(pixel, parts[lane])));
      const auto coverage = hn::Mul(hn::Broadcast<3>(color), hn::Set(pixel, pixelAlpha));
      const auto shown = hn::IfThenElse(isColor, hn::Mul(color, coverage), coverage);
      hn::StoreU(pixelAlpha > 0 ? shown : hn::Zero(pixel), pixel, out + 4 * (i + lane));
    }
  }
  return whole;
}
#endif

std::size_t mapRGBA8(const std::uint8_t* in, std::uint8_t* out, std::size_t count, const MapTable<RGBA8>& table) {
  return mapVectors(RGBA8(), in, out, count, table);
}
std::size_t mapARGB8(const std::uint8_t* in, std::uint8_t* out, std::size_t count, const MapTable<ARGB8>& table) {
  return mapVectors(ARGB8(), in, out, count, table);
}
std::size_t mapWords(const std::uint16_t* in, std::uint16_t* out, std::size_t count, const MapTable<RGBA16>& table) {
  return mapVectors(RGBA16(), in, out, count, table);
}
std::size_t mapFloats(const float* in, float* out, std::size_t count, const MapTable<RGBAFloat>& table) {
  return mapVectors(RGBAFloat(), in, out, count, table);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(mapRGBA8);
HWY_EXPORT(mapARGB8);
HWY_EXPORT(mapWords);
HWY_EXPORT(mapFloats);

template <class Layout>
void gradientMapRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                    const MapTable<Layout>& table) {
  const auto vectors = rowOfLayout<Layout>(HWY_DYNAMIC_DISPATCH(mapRGBA8), HWY_DYNAMIC_DISPATCH(mapARGB8),
                                           HWY_DYNAMIC_DISPATCH(mapWords), HWY_DYNAMIC_DISPATCH(mapFloats));
  const std::size_t done = TCUsesScalarKernels() ? 0 : vectors(in, out, count, table);
  gradientMapRowScalar<Layout>(in + 4 * done, out + 4 * done, count - done, table);
}

template void gradientMapRow<RGBA8>(const std::uint8_t*, std::uint8_t*, std::size_t, const MapTable<RGBA8>&);
template void gradientMapRow<ARGB8>(const std::uint8_t*, std::uint8_t*, std::size_t, const MapTable<ARGB8>&);
template void gradientMapRow<RGBA16>(const std::uint16_t*, std::uint16_t*, std::size_t, const MapTable<RGBA16>&);
template void gradientMapRow<RGBAFloat>(const float*, float*, std::size_t, const MapTable<RGBAFloat>&);

}  // namespace vorto::effects
#endif
