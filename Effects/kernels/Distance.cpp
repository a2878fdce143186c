// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Distance.h"

#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Distance.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

// Each returns how many pixels it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
template <class Shape>
std::size_t distances(const DistanceRow&, float*, std::size_t) {
  return 0;
}
#else
namespace hn = hwy::HWY_NAMESPACE;
using Floats = hn::ScalableTag<float>;

HWY_INLINE hn::Vec<Floats> distance(CircleShape, hn::Vec<Floats> u, hn::Vec<Floats> v) {
  return hn::Sqrt(hn::Add(hn::Mul(u, u), hn::Mul(v, v)));
}

HWY_INLINE hn::Vec<Floats> distance(DiamondShape, hn::Vec<Floats> u, hn::Vec<Floats> v) {
  return hn::Add(hn::Abs(u), hn::Abs(v));
}

HWY_INLINE hn::Vec<Floats> distance(RectangleShape, hn::Vec<Floats> u, hn::Vec<Floats> v) {
  return hn::IfThenElse(hn::Lt(hn::Abs(u), hn::Abs(v)), hn::Abs(v), hn::Abs(u));
}

template <class Shape>
std::size_t distances(const DistanceRow& row, float* out, std::size_t count) {
  const Floats d;
  const hn::RebindToSigned<Floats> di;
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  const auto first = hn::Iota(di, 0);
  for (std::size_t i = 0; i < whole; i += lanes) {
    const auto column = hn::Add(first, hn::Set(di, static_cast<std::int32_t>(i) - row.column));
    const auto pixels = hn::Add(hn::ConvertTo(d, column), hn::Set(d, row.offset));
    const auto u = hn::Mul(pixels, hn::Set(d, row.perPixel));
    hn::StoreU(distance(Shape(), u, hn::Set(d, row.v)), d, out + i);
  }
  return whole;
}
#endif

std::size_t circleDistances(const DistanceRow& row, float* out, std::size_t count) {
  return distances<CircleShape>(row, out, count);
}
std::size_t diamondDistances(const DistanceRow& row, float* out, std::size_t count) {
  return distances<DiamondShape>(row, out, count);
}
std::size_t rectangleDistances(const DistanceRow& row, float* out, std::size_t count) {
  return distances<RectangleShape>(row, out, count);
}

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(circleDistances);
HWY_EXPORT(diamondDistances);
HWY_EXPORT(rectangleDistances);

namespace {

std::size_t distanceVectors(CircleShape, const DistanceRow& row, float* out, std::size_t count) {
  return HWY_DYNAMIC_DISPATCH(circleDistances)(row, out, count);
}
std::size_t distanceVectors(DiamondShape, const DistanceRow& row, float* out, std::size_t count) {
  return HWY_DYNAMIC_DISPATCH(diamondDistances)(row, out, count);
}
std::size_t distanceVectors(RectangleShape, const DistanceRow& row, float* out, std::size_t count) {
  return HWY_DYNAMIC_DISPATCH(rectangleDistances)(row, out, count);
}

}  // namespace

template <class Shape>
void distanceRow(const DistanceRow& row, float* out, std::size_t count) {
  distanceRowScalar<Shape>(row, out, TCUsesScalarKernels() ? 0 : distanceVectors(Shape(), row, out, count), count);
}

template void distanceRow<CircleShape>(const DistanceRow&, float*, std::size_t);
template void distanceRow<DiamondShape>(const DistanceRow&, float*, std::size_t);
template void distanceRow<RectangleShape>(const DistanceRow&, float*, std::size_t);

}  // namespace vorto::effects
#endif
