// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/HueShift.h"

#include "Effects/kernels/RowOfLayout.h"
#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/HueShift.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/PlanarPixels-inl.h"

// Each returns how many pixels it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
template <class Layout, class Channel>
std::size_t shiftRow(const Channel*, Channel*, std::size_t, HueShift) {
  return 0;
}
#else
using Values = hn::Vec<Floats>;

struct HSL {
  Values hue, saturation, lightness;
};

HWY_INLINE Values constant(float value) {
  return hn::Set(Floats(), value);
}
HWY_INLINE Values positive(Values v) {
  return hn::IfThenElseZero(hn::Gt(v, hn::Zero(Floats())), v);
}
HWY_INLINE Values wrapped(Values sextants) {
  return hn::IfThenElse(hn::Ge(sextants, constant(6)), hn::Sub(sextants, constant(6)), sextants);
}

HWY_INLINE HSL toHSL(Values red, Values green, Values blue) {
  const auto most = hn::Max(hn::Max(red, green), blue);
  const auto least = hn::Min(hn::Min(red, green), blue);
  const auto sum = hn::Add(most, least), range = hn::Sub(most, least);
  const auto lightness = hn::Mul(sum, constant(0.5F));
  const auto isColored = hn::Gt(range, hn::Zero(Floats()));
  const auto isDark = hn::Le(lightness, constant(0.5F));
  const auto saturation = hn::Div(range, hn::IfThenElse(isDark, sum, hn::Sub(constant(2), sum)));
  const auto isRed = hn::Eq(most, red), isGreen = hn::Eq(most, green);
  const auto ofRed = hn::Sub(green, blue);
  const auto ofOthers = hn::IfThenElse(isGreen, hn::Sub(blue, red), hn::Sub(red, green));
  const auto difference = hn::IfThenElse(isRed, ofRed, ofOthers);
  const auto redOffset = hn::IfThenElseZero(hn::Lt(ofRed, hn::Zero(Floats())), constant(6));
  const auto offset = hn::IfThenElse(isRed, redOffset, hn::IfThenElse(isGreen, constant(2), constant(4)));
  const auto hue = hn::Add(hn::Div(difference, range), offset);
  return {hn::IfThenElseZero(isColored, hue), hn::IfThenElseZero(isColored, saturation), lightness};
}

HWY_INLINE Values component(Values low, Values range, Values sextants) {
  const auto ramp = hn::Min(sextants, hn::Sub(constant(4), sextants));
  return hn::Add(low, hn::Mul(range, hn::Min(hn::Max(ramp, constant(0)), constant(1))));
}

template <class Layout>
std::size_t shiftRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                     HueShift shift) {
  const Floats d;
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    const Planar p = loadPlanar<Layout>(in + 4 * i);
    const auto most = hn::Max(hn::Max(positive(p.red), positive(p.green)), positive(p.blue));
    const auto unit = hn::Max(most, p.alpha);
    const auto share = hn::Div(constant(1), unit);
    HSL c = toHSL(positive(hn::Mul(p.red, share)), positive(hn::Mul(p.green, share)), positive(hn::Mul(p.blue, share)));
    c.hue = wrapped(hn::Add(wrapped(c.hue), constant(shift.sextants)));
    c.saturation = hn::Min(hn::Mul(c.saturation, constant(shift.saturation)), constant(1));
    c.lightness = hn::Add(hn::Mul(c.lightness, constant(shift.lightScale)), constant(shift.lightness));
    const auto product = hn::Mul(c.lightness, c.saturation);
    const auto high = hn::IfThenElse(hn::Le(c.lightness, constant(0.5F)), hn::Add(c.lightness, product),
                                     hn::Sub(hn::Add(c.lightness, c.saturation), product));
    const auto low = hn::Sub(hn::Mul(constant(2), c.lightness), high);
    const auto range = hn::Sub(high, low);
    const auto isShown = hn::Gt(p.alpha, hn::Zero(d));
    const auto made = [&](Values old, Values sextants) HWY_ATTR {
      return hn::IfThenElse(isShown, hn::Mul(component(low, range, sextants), unit), old);
    };
    storePlanar<Layout>({made(p.red, wrapped(hn::Add(c.hue, constant(2)))), made(p.green, c.hue),
                         made(p.blue, wrapped(hn::Add(c.hue, constant(4)))), p.alpha},
                        out + 4 * i);
  }
  return whole;
}
#endif

using Byte = std::uint8_t;
using Word = std::uint16_t;
std::size_t shiftRGBA8(const Byte* in, Byte* out, std::size_t count, HueShift shift) {
  return shiftRow<RGBA8>(in, out, count, shift);
}
std::size_t shiftARGB8(const Byte* in, Byte* out, std::size_t count, HueShift shift) {
  return shiftRow<ARGB8>(in, out, count, shift);
}
std::size_t shiftWords(const Word* in, Word* out, std::size_t count, HueShift shift) {
  return shiftRow<RGBA16>(in, out, count, shift);
}
std::size_t shiftFloats(const float* in, float* out, std::size_t count, HueShift shift) {
  return shiftRow<RGBAFloat>(in, out, count, shift);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(shiftRGBA8);
HWY_EXPORT(shiftARGB8);
HWY_EXPORT(shiftWords);
HWY_EXPORT(shiftFloats);

template <class Layout>
void hueShiftRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count, HueShift shift) {
  const auto vectors = rowOfLayout<Layout>(HWY_DYNAMIC_DISPATCH(shiftRGBA8), HWY_DYNAMIC_DISPATCH(shiftARGB8),
                                           HWY_DYNAMIC_DISPATCH(shiftWords), HWY_DYNAMIC_DISPATCH(shiftFloats));
  const std::size_t done = TCUsesScalarKernels() ? 0 : vectors(in, out, count, shift);
  hueShiftRowScalar<Layout>(in + 4 * done, out + 4 * done, count - done, shift);
}

using Byte = std::uint8_t;
using Word = std::uint16_t;
template void hueShiftRow<RGBA8>(const Byte*, Byte*, std::size_t, HueShift);
template void hueShiftRow<ARGB8>(const Byte*, Byte*, std::size_t, HueShift);
template void hueShiftRow<RGBA16>(const Word*, Word*, std::size_t, HueShift);
template void hueShiftRow<RGBAFloat>(const float*, float*, std::size_t, HueShift);

}  // namespace vorto::effects
#endif
