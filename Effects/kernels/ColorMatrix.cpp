// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/ColorMatrix.h"

#include "Effects/kernels/RowOfLayout.h"
#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/ColorMatrix.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/PlanarPixels-inl.h"

// Each returns how many pixels it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
template <class Layout, class Channel>
std::size_t matrixRow(const Channel*, Channel*, std::size_t, const ColorMatrix&) {
  return 0;
}
#else
HWY_INLINE hn::Vec<Floats> weighted(const std::array<float, 5>& row, const Planar& p) {
  const Floats d;
  const auto first = hn::Add(hn::Mul(hn::Set(d, row[0]), p.red), hn::Mul(hn::Set(d, row[1]), p.green));
  const auto second = hn::Add(hn::Mul(hn::Set(d, row[2]), p.blue), hn::Mul(hn::Set(d, row[3]), p.alpha));
  return hn::Add(hn::Add(first, second), hn::Set(d, row[4]));
}

// NaN is 0.
HWY_INLINE hn::Vec<Floats> cut(hn::Vec<Floats> v) {
  const Floats d;
  return hn::IfThenElseZero(hn::Gt(v, hn::Zero(d)), hn::Min(v, hn::Set(d, 1.0F)));
}

template <class Layout>
std::size_t matrixRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                      const ColorMatrix& matrix) {
  using Channel = typename Layout::Channel;
  constexpr bool isFloat = std::is_same_v<Channel, float>;
  constexpr float full = fullOf<Channel>();
  const Floats d;
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    Planar p = loadPlanar<Layout>(in + 4 * i);
    const auto isShown = hn::Gt(p.alpha, hn::Zero(d));
    const auto share = hn::Div(hn::Set(d, 1.0F), p.alpha);
    p.red = hn::IfThenElseZero(isShown, hn::Mul(p.red, share));
    p.green = hn::IfThenElseZero(isShown, hn::Mul(p.green, share));
    p.blue = hn::IfThenElseZero(isShown, hn::Mul(p.blue, share));
    p.alpha = hn::Mul(hn::IfThenElseZero(isShown, p.alpha), hn::Set(d, 1 / full));
    const auto newAlpha = hn::Mul(cut(weighted(matrix[3], p)), hn::Set(d, full));
    const auto color = [&](std::size_t c) HWY_ATTR {
      const auto value = weighted(matrix[c], p);
      return hn::Mul(isFloat ? value : cut(value), newAlpha);
    };
    storePlanar<Layout>({color(0), color(1), color(2), newAlpha}, out + 4 * i);
  }
  return whole;
}
#endif

using Byte = std::uint8_t;
using Word = std::uint16_t;
std::size_t matrixRGBA8(const Byte* in, Byte* out, std::size_t count, const ColorMatrix& matrix) {
  return matrixRow<RGBA8>(in, out, count, matrix);
}
std::size_t matrixARGB8(const Byte* in, Byte* out, std::size_t count, const ColorMatrix& matrix) {
  return matrixRow<ARGB8>(in, out, count, matrix);
}
std::size_t matrixWords(const Word* in, Word* out, std::size_t count, const ColorMatrix& matrix) {
  return matrixRow<RGBA16>(in, out, count, matrix);
}
std::size_t matrixFloats(const float* in, float* out, std::size_t count, const ColorMatrix& matrix) {
  return matrixRow<RGBAFloat>(in, out, count, matrix);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(matrixRGBA8);
HWY_EXPORT(matrixARGB8);
HWY_EXPORT(matrixWords);
HWY_EXPORT(matrixFloats);

template <class Layout>
void colorMatrixRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                    const ColorMatrix& matrix) {
  const auto vectors = rowOfLayout<Layout>(HWY_DYNAMIC_DISPATCH(matrixRGBA8), HWY_DYNAMIC_DISPATCH(matrixARGB8),
                                           HWY_DYNAMIC_DISPATCH(matrixWords), HWY_DYNAMIC_DISPATCH(matrixFloats));
  const std::size_t done = TCUsesScalarKernels() ? 0 : vectors(in, out, count, matrix);
  colorMatrixRowScalar<Layout>(in + 4 * done, out + 4 * done, count - done, matrix);
}

using Byte = std::uint8_t;
using Word = std::uint16_t;
template void colorMatrixRow<RGBA8>(const Byte*, Byte*, std::size_t, const ColorMatrix&);
template void colorMatrixRow<ARGB8>(const Byte*, Byte*, std::size_t, const ColorMatrix&);
template void colorMatrixRow<RGBA16>(const Word*, Word*, std::size_t, const ColorMatrix&);
template void colorMatrixRow<RGBAFloat>(const float*, float*, std::size_t, const ColorMatrix&);

}  // namespace vorto::effects
#endif
