// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/Channels/InexactLinear.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Benchmarks/Channels/InexactLinear.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace inexact::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::ScalableTag<float>;

template <class Vector>
HWY_INLINE void storeEntries(const Vector (&argb)[4], float* out) {
  hn::StoreInterleaved4(argb[0], argb[1], argb[2], argb[3], Floats(), out);
}

template <class Vector>
HWY_INLINE void storeEntries(const Vector (&argb)[4], std::uint8_t* out) {
  const hn::RebindToSigned<Floats> integers;
  const auto word = [&](const Vector& component) { return hn::ConvertTo(integers, component); };
  const auto alphaRed = hn::Or(word(argb[0]), hn::ShiftLeft<8>(word(argb[1])));
  const auto greenBlue = hn::Or(hn::ShiftLeft<16>(word(argb[2])), hn::ShiftLeft<24>(word(argb[3])));
#if HWY_TARGET == HWY_SCALAR
  const std::int32_t entry = hn::GetLane(hn::Or(alphaRed, greenBlue));
  std::memcpy(out, &entry, sizeof(entry));
#else
  const hn::Repartition<std::uint8_t, Floats> bytes;
  hn::StoreU(hn::BitCast(bytes, hn::Or(alphaRed, greenBlue)), bytes, out);
#endif
}

// Whole vectors, past the end of a segment into the next one and at last into the table's slack.
template <class Stored>
void fill(const std::vector<InexactStop>& stops, Stored* out, std::uint32_t count) {
  const Floats d;
  const std::size_t lanes = hn::Lanes(d);
  const float scale = std::is_same_v<Stored, float> ? 1.0F : 255.0F;
  const float last = static_cast<float>(count - 1);
  std::uint32_t i = 0;
  for (std::size_t s = 0; s + 1 < stops.size(); ++s) {
    const InexactStop& a = stops[s];
    const InexactStop& b = stops[s + 1];
    const auto end = std::min(count, static_cast<std::uint32_t>(b.position * last) + 1);
    const float perIndex = 1.0F / ((b.position - a.position) * last);
    hn::Vec<Floats> slope[4];
    hn::Vec<Floats> start[4];
    for (std::size_t c = 0; c < 4; ++c) {
      const float rise = (b.argb[c] - a.argb[c]) * scale * perIndex;
      slope[c] = hn::Set(d, rise);
      start[c] = hn::Set(d, a.argb[c] * scale - rise * (a.position * last));
    }
    auto index = hn::Iota(d, static_cast<float>(i));
    for (; i < end; i += static_cast<std::uint32_t>(lanes)) {
      hn::Vec<Floats> argb[4];
      for (std::size_t c = 0; c < 4; ++c) argb[c] = hn::MulAdd(slope[c], index, start[c]);
      storeEntries(argb, out + std::size_t{i} * 4);
      index = hn::Add(index, hn::Set(d, static_cast<float>(lanes)));
    }
    i = end;
  }
}

void fillBytes(const std::vector<InexactStop>& stops, std::uint8_t* out, std::uint32_t count) {
  fill(stops, out, count);
}

void fillFloats(const std::vector<InexactStop>& stops, float* out, std::uint32_t count) {
  fill(stops, out, count);
}

}  // namespace inexact::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace inexact {
HWY_EXPORT(fillBytes);
HWY_EXPORT(fillFloats);
void bytes(const std::vector<InexactStop>& stops, std::uint8_t* out, std::uint32_t count) {
  HWY_DYNAMIC_DISPATCH(fillBytes)(stops, out, count);
}
void floats(const std::vector<InexactStop>& stops, float* out, std::uint32_t count) {
  HWY_DYNAMIC_DISPATCH(fillFloats)(stops, out, count);
}
}  // namespace inexact

void inexactLinear(const std::vector<InexactStop>& stops, std::uint8_t* out, std::uint32_t count) {
  inexact::bytes(stops, out, count);
}

void inexactLinear(const std::vector<InexactStop>& stops, float* out, std::uint32_t count) {
  inexact::floats(stops, out, count);
}
#endif  // HWY_ONCE
