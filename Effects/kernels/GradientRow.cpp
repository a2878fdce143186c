// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/GradientRow.h"

#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/GradientRow.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/Pixels-inl.h"

// Each returns how many pixels it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
std::size_t nearestWides(const float*, void*, std::size_t, const void*) {
  return 0;
}
std::size_t gradientWords(const float*, std::uint16_t*, std::size_t, const void*) {
  return 0;
}
std::size_t gradientFloats(const float*, float*, std::size_t, const void*) {
  return 0;
}
#else
template <class D>
HWY_INLINE hn::Vec<D> placesOf(D d, hn::Vec<D> position) {
  const auto one = hn::Set(d, 1.0F);
  const auto below = hn::IfThenElse(hn::Lt(position, one), position, one);
  const auto clamped = hn::IfThenElseZero(hn::Gt(position, hn::Zero(d)), below);
  return hn::Mul(clamped, hn::Set(d, static_cast<float>(kGradientSteps - 1)));
}

// Entries of 32 bits, whatever they are.
std::size_t nearestWides(const float* positions, void* out, std::size_t count, const void* table) {
  const Floats d;
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    const auto place = hn::Add(placesOf(d, hn::LoadU(d, positions + i)), hn::Set(d, 0.5F));
    const auto index = hn::ConvertTo(hn::RebindToSigned<Floats>(), place);
    const auto pixels = hn::GatherIndex(Wides(), static_cast<const std::uint32_t*>(table), index);
    storeNext<false>(hn::BitCast(Bytes(), pixels), Bytes(), static_cast<std::uint8_t*>(out) + 4 * i);
  }
  return whole;
}

std::size_t gradientWords(const float* positions, std::uint16_t* out, std::size_t count, const void* table) {
  const hn::Rebind<float, Longs> d;
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    const auto place = hn::Add(placesOf(d, hn::LoadU(d, positions + i)), hn::Set(d, 0.5F));
    const auto narrow = hn::ConvertTo(hn::RebindToSigned<decltype(d)>(), place);
    const auto index = hn::PromoteTo(hn::RebindToSigned<Longs>(), narrow);
    const auto pixels = hn::GatherIndex(Longs(), static_cast<const std::uint64_t*>(table), index);
    storeNext<false>(hn::BitCast(Words(), pixels), Words(), out + 4 * i);
  }
  return whole;
}

// First the places of a vector of pixels in the table, then one pixel after the other.
std::size_t gradientFloats(const float* positions, float* out, std::size_t count, const void* table) {
  const Floats d;
  const hn::RebindToSigned<Floats> di;
  const hn::FixedTag<float, 4> pixel;
  const auto* const entries = static_cast<const float*>(table);
  const auto isColor = hn::FirstN(pixel, 3);
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  HWY_ALIGN std::int32_t indices[hn::MaxLanes(d)];
  HWY_ALIGN float parts[hn::MaxLanes(d)];
  for (std::size_t i = 0; i < whole; i += lanes) {
    const auto place = placesOf(d, hn::LoadU(d, positions + i));
    const auto index = hn::ConvertTo(di, place);
    hn::Store(index, di, indices);
    hn::Store(hn::Sub(place, hn::ConvertTo(d, index)), d, parts);
    for (std::size_t lane = 0; lane < lanes; ++lane) {
      const float* const entry = entries + 4 * static_cast<std::size_t>(indices[lane]);
      const auto left = hn::LoadU(pixel, entry);
      const auto right = hn::LoadU(pixel, entry + 4);
      const auto color = hn::Add(left, hn::Mul(hn::Sub(right, left), hn::Set(pixel, parts[lane])));
      const auto alpha = hn::Broadcast<3>(color);
      hn::StoreU(hn::IfThenElse(isColor, hn::Mul(color, alpha), alpha), pixel, out + 4 * (i + lane));
    }
    for (std::size_t part = 0; part < 4; ++part) kernels::HWY_NAMESPACE::expectWriteBehind(out + 4 * i + part * lanes);
  }
  return whole;
}
#endif

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(nearestWides);
HWY_EXPORT(gradientWords);
HWY_EXPORT(gradientFloats);

template <>
void gradientRow<RGBA8>(const float* positions, std::uint8_t* out, std::size_t count, const LaidPixel<RGBA8>* table) {
  const std::size_t done = TCUsesScalarKernels() ? 0 : HWY_DYNAMIC_DISPATCH(nearestWides)(positions, out, count, table);
  gradientRowScalar<RGBA8>(positions + done, out + 4 * done, count - done, table);
}

template <class Value>
void valueRow(const float* positions, Value* out, std::size_t count, const Value* values) {
  const std::size_t done =
      TCUsesScalarKernels() ? 0 : HWY_DYNAMIC_DISPATCH(nearestWides)(positions, out, count, values);
  valueRowScalar(positions + done, out + done, count - done, values);
}

template void valueRow(const float*, std::uint32_t*, std::size_t, const std::uint32_t*);
template void valueRow(const float*, float*, std::size_t, const float*);

template <>
void gradientRow<RGBA16>(const float* positions, std::uint16_t* out, std::size_t count,
                         const LaidPixel<RGBA16>* table) {
  const std::size_t done =
      TCUsesScalarKernels() ? 0 : HWY_DYNAMIC_DISPATCH(gradientWords)(positions, out, count, table);
  gradientRowScalar<RGBA16>(positions + done, out + 4 * done, count - done, table);
}

void gradientFloatRow(const float* positions, float* out, std::size_t count, const LaidPixel<RGBAFloat>* table) {
  const std::size_t done =
      TCUsesScalarKernels() ? 0 : HWY_DYNAMIC_DISPATCH(gradientFloats)(positions, out, count, table);
  gradientFloatRowScalar(positions + done, out + 4 * done, count - done, table);
}

}  // namespace vorto::effects
#endif
