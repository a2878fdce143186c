// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/BytePatterns.h"

#include "TarnCore/kernels/Dispatch.h"
#include "TarnCore/kernels/Memory.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "TarnCore/kernels/BytePatterns.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "TarnCore/kernels/Stores-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
void complement(std::uint8_t* data, std::size_t bytes, const BytePattern& mask) {
  complementBytesScalar(data, bytes, mask);
}
void replace(std::uint8_t* data, std::size_t bytes, const BytePattern& mask, const BytePattern& value) {
  replaceBytesScalar(data, bytes, mask, value);
}
void shuffle(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes, const BytePattern& order,
             std::size_t pixelBytes, bool) {
  shuffleBytesScalar(destination, source, bytes, order, pixelBytes);
}
#else
using D = hn::ScalableTag<std::uint8_t>;

void complement(std::uint8_t* data, std::size_t bytes, const BytePattern& mask) {
  const D d;
  const std::size_t lanes = hn::Lanes(d);
  const auto bits = hn::LoadDup128(d, mask.bytes);
  std::size_t i = 0;
  for (; i + lanes <= bytes; i += lanes) storeNext<false>(hn::Xor(hn::LoadU(d, data + i), bits), d, data + i);
  complementBytesScalar(data + i, bytes - i, mask);
}

void replace(std::uint8_t* data, std::size_t bytes, const BytePattern& mask, const BytePattern& value) {
  const D d;
  const std::size_t lanes = hn::Lanes(d);
  const auto bits = hn::LoadDup128(d, mask.bytes);
  const auto values = hn::And(hn::LoadDup128(d, value.bytes), bits);
  std::size_t i = 0;
  for (; i + lanes <= bytes; i += lanes) {
    storeNext<false>(hn::Or(hn::AndNot(bits, hn::LoadU(d, data + i)), values), d, data + i);
  }
  replaceBytesScalar(data + i, bytes - i, mask, value);
}

// The pixels before the first aligned vector are for the definition, so that vectors begin with a whole pixel.
template <bool streamed>
void shuffleVectors(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes, const BytePattern& order,
                    std::size_t pixelBytes) {
  const D d;
  const std::size_t lanes = hn::Lanes(d);
  const auto indices = hn::LoadDup128(d, order.bytes);
  std::size_t i = (lanes - reinterpret_cast<std::uintptr_t>(destination) % lanes) % lanes;
  if (i > bytes) i = bytes;
  shuffleBytesScalar(destination, source, i, order, pixelBytes);
  for (; i + lanes <= bytes; i += lanes) {
    storeNext<streamed>(hn::TableLookupBytes(hn::LoadU(d, source + i), indices), d, destination + i);
  }
  finishStores<streamed>();
  shuffleBytesScalar(destination + i, source + i, bytes - i, order, pixelBytes);
}

// Pixels of which none begins with a vector are stored where they lie.
void shuffleUnaligned(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes,
                      const BytePattern& order, std::size_t pixelBytes) {
  const D d;
  const std::size_t lanes = hn::Lanes(d);
  const auto indices = hn::LoadDup128(d, order.bytes);
  std::size_t i = 0;
  for (; i + lanes <= bytes; i += lanes) {
    storeNext<false>(hn::TableLookupBytes(hn::LoadU(d, source + i), indices), d, destination + i);
  }
  shuffleBytesScalar(destination + i, source + i, bytes - i, order, pixelBytes);
}

void shuffle(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes, const BytePattern& order,
             std::size_t pixelBytes, bool streamed) {
  if (reinterpret_cast<std::uintptr_t>(destination) % pixelBytes != 0) {
    return shuffleUnaligned(destination, source, bytes, order, pixelBytes);
  }
  if (streamed) return shuffleVectors<true>(destination, source, bytes, order, pixelBytes);
  shuffleVectors<false>(destination, source, bytes, order, pixelBytes);
}
#endif

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::kernels {

HWY_EXPORT(complement);
HWY_EXPORT(replace);
HWY_EXPORT(shuffle);

void complementBytes(std::uint8_t* data, std::size_t bytes, const BytePattern& mask) {
  if (useScalar()) return complementBytesScalar(data, bytes, mask);
  HWY_DYNAMIC_DISPATCH(complement)(data, bytes, mask);
}

void replaceBytes(std::uint8_t* data, std::size_t bytes, const BytePattern& mask, const BytePattern& value) {
  if (useScalar()) return replaceBytesScalar(data, bytes, mask, value);
  HWY_DYNAMIC_DISPATCH(replace)(data, bytes, mask, value);
}

void shuffleBytes(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes, const BytePattern& order,
                  std::size_t pixelBytes, bool streamed) {
  if (useScalar() || overlapsShifted(destination, bytes, source, bytes)) {
    return shuffleBytesScalar(destination, source, bytes, order, pixelBytes);
  }
  HWY_DYNAMIC_DISPATCH(shuffle)(destination, source, bytes, order, pixelBytes, streamed);
}

}  // namespace vorto::kernels
#endif
