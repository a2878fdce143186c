// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Noise.h"

#include "TarnCore/TCKernelTarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Effects/kernels/Noise.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Effects/kernels/Pixels-inl.h"

// Each returns how many values or pixels it made: whole vectors of them.
HWY_BEFORE_NAMESPACE();
namespace vorto::effects::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
std::size_t latticeVectors(std::uint32_t, float*, std::size_t) {
  return 0;
}
std::size_t opaqueBytes(const float*, const float*, const float*, std::uint8_t*, std::size_t) {
  return 0;
}
std::size_t opaqueWords(const float*, const float*, const float*, std::uint16_t*, std::size_t) {
  return 0;
}
std::size_t opaqueFloats(const float*, const float*, const float*, float*, std::size_t) {
  return 0;
}
#else
using Signed = hn::RebindToSigned<Wides>;

HWY_INLINE hn::Vec<Wides> scrambledLanes(hn::Vec<Wides> n) {
  const Wides d;
  n = hn::Mul(hn::Xor(n, hn::ShiftRight<16>(n)), hn::Set(d, kScrambleFirst));
  n = hn::Mul(hn::Xor(n, hn::ShiftRight<15>(n)), hn::Set(d, kScrambleSecond));
  return hn::Xor(n, hn::ShiftRight<16>(n));
}

std::size_t latticeVectors(std::uint32_t rowKey, float* out, std::size_t count) {
  const Wides d;
  const Floats df;
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  const auto first = hn::Iota(d, 0);
  for (std::size_t i = 0; i < whole; i += lanes) {
    const auto index = hn::Add(first, hn::Set(d, static_cast<std::uint32_t>(i)));
    const auto column = hn::Mul(index, hn::Set(d, kColumnStep));
    const auto n = hn::ShiftRight<8>(scrambledLanes(hn::Xor(hn::Set(d, rowKey), column)));
    hn::StoreU(hn::Mul(hn::ConvertTo(df, hn::BitCast(Signed(), n)), hn::Set(df, 0x1p-24F)), df, out + i);
  }
  return whole;
}

template <int one>
HWY_INLINE hn::Vec<Wides> roundedAt(const float* place) {
  const Floats d;
  const auto most = hn::Set(d, static_cast<float>(one));
  const auto value = hn::Min(hn::Max(hn::Mul(hn::LoadU(d, place), most), hn::Zero(d)), most);
  return hn::BitCast(Wides(), hn::ConvertTo(Signed(), hn::Add(value, hn::Set(d, 0.5F))));
}

std::size_t opaqueBytes(const float* red, const float* green, const float* blue, std::uint8_t* out, std::size_t count) {
  const Wides d;
  const auto alpha = hn::Set(d, 0xFFU << (8 * RGBA8::kAlpha));
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    const auto r = hn::ShiftLeft<8 * RGBA8::kRed>(roundedAt<255>(red + i));
    const auto g = hn::ShiftLeft<8 * RGBA8::kGreen>(roundedAt<255>(green + i));
    const auto b = hn::ShiftLeft<8 * RGBA8::kBlue>(roundedAt<255>(blue + i));
    storeNext<false>(hn::BitCast(Bytes(), hn::Or(hn::Or(r, g), hn::Or(b, alpha))), Bytes(), out + 4 * i);
  }
  return whole;
}

std::size_t opaqueWords(const float* red, const float* green, const float* blue, std::uint16_t* out,
                        std::size_t count) {
  const hn::Rebind<std::uint16_t, Wides> d;
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    const auto r = hn::DemoteTo(d, hn::BitCast(Signed(), roundedAt<65535>(red + i)));
    const auto g = hn::DemoteTo(d, hn::BitCast(Signed(), roundedAt<65535>(green + i)));
    const auto b = hn::DemoteTo(d, hn::BitCast(Signed(), roundedAt<65535>(blue + i)));
    hn::StoreInterleaved4(r, g, b, hn::Set(d, 65535), d, out + 4 * i);
  }
  return whole;
}

std::size_t opaqueFloats(const float* red, const float* green, const float* blue, float* out, std::size_t count) {
  const Floats d;
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = count / lanes * lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    hn::StoreInterleaved4(hn::LoadU(d, red + i), hn::LoadU(d, green + i), hn::LoadU(d, blue + i), hn::Set(d, 1.0F), d,
                          out + 4 * i);
  }
  return whole;
}
#endif

}  // namespace vorto::effects::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::effects {

HWY_EXPORT(latticeVectors);
HWY_EXPORT(opaqueBytes);
HWY_EXPORT(opaqueWords);
HWY_EXPORT(opaqueFloats);

void latticeRow(std::uint32_t key, std::uint32_t row, float* out, std::size_t count) {
  const std::size_t done =
      TCUsesScalarKernels() ? 0 : HWY_DYNAMIC_DISPATCH(latticeVectors)(scrambled(key + row), out, count);
  latticeRowScalar(key, row, out, done, count);
}

template <class Layout>
void opaqueRow(const float* red, const float* green, const float* blue, typename Layout::Channel* out,
               std::size_t count) {
  if (TCUsesScalarKernels()) return opaqueRowScalar<Layout>(red, green, blue, out, count);
  std::size_t done = 0;
  if constexpr (std::is_same_v<Layout, RGBA8>) {
    done = HWY_DYNAMIC_DISPATCH(opaqueBytes)(red, green, blue, out, count);
  } else if constexpr (std::is_same_v<Layout, RGBA16>) {
    done = HWY_DYNAMIC_DISPATCH(opaqueWords)(red, green, blue, out, count);
  } else {
    done = HWY_DYNAMIC_DISPATCH(opaqueFloats)(red, green, blue, out, count);
  }
  opaqueRowScalar<Layout>(red + done, green + done, blue + done, out + 4 * done, count - done);
}

template void opaqueRow<RGBA8>(const float*, const float*, const float*, std::uint8_t*, std::size_t);
template void opaqueRow<RGBA16>(const float*, const float*, const float*, std::uint16_t*, std::size_t);
template void opaqueRow<RGBAFloat>(const float*, const float*, const float*, float*, std::size_t);

}  // namespace vorto::effects
#endif
