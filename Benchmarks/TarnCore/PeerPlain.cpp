// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/TarnCore/FrameBench.h"

#if VORTO_HAVE_OPENSSL
#include <openssl/evp.h>
#endif
#if defined(__x86_64__)
#include <immintrin.h>
#endif
#include <Imath/half.h>

#include <cstdlib>
#include <cstring>

// Peers that are a few lines: loops over halves, the C library, and OpenSSL's digest.

namespace {

using Format = VortoPixelFormat;

#if defined(__x86_64__)
// The processor's own conversion, eight at a time.
__attribute__((target("avx,f16c"))) void halvesToFloats(VortoBitmap& to, VortoBitmap& from) {
  const std::size_t count = std::size_t{to.width} * to.height * 4;
  auto* const out = reinterpret_cast<float*>(to.data);
  const auto* const in = reinterpret_cast<const std::uint16_t*>(from.data);
  for (std::size_t i = 0; i + 8 <= count; i += 8) {
    _mm256_storeu_ps(out + i, _mm256_cvtph_ps(_mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i))));
  }
}
#endif

void invertHalves(VortoBitmap& bitmap, VortoBitmap&) {
  auto* const channels = reinterpret_cast<half*>(bitmap.data);
  const std::size_t pixels = std::size_t{bitmap.width} * bitmap.height;
  for (std::size_t i = 0; i < pixels; ++i) channels[4 * i + 3] = half(1 - static_cast<float>(channels[4 * i + 3]));
}

void opaqueHalves(VortoBitmap& bitmap, VortoBitmap&) {
  auto* const channels = reinterpret_cast<half*>(bitmap.data);
  const half one = 1;
  const std::size_t pixels = std::size_t{bitmap.width} * bitmap.height;
  for (std::size_t i = 0; i < pixels; ++i) channels[4 * i + 3] = one;
}

void clearFrame(VortoBitmap& like, VortoBitmap&) {
  std::memset(like.data, 0, like.getSize());
}

#if VORTO_HAVE_OPENSSL
void digest(VortoBitmap& bitmap, VortoBitmap&) {
  unsigned char out[EVP_MAX_MD_SIZE];
  EVP_Digest(bitmap.data, bitmap.getSize(), out, nullptr, EVP_md5(), nullptr);
  bitmap.data[0] = out[0];
}
#endif

}  // namespace

std::vector<Peer> plainPeers(const Row& row) {
  const bool halves = row.source == Format::RGBAHalfFloat;
  switch (row.task) {
    case Task::InvertAlpha:
      if (halves) return {{"Imath's loop", invertHalves}};
      break;
    case Task::ConstantAlpha:
      if (halves) return {{"a loop", opaqueHalves}};
      break;
#if defined(__x86_64__)
    case Task::ConvertDepth:
      if (halves && row.destination == Format::RGBAFloat && row.shape == Shape::Whole && __builtin_cpu_supports("f16c"))
        return {{"F16C loop", halvesToFloats}};
      break;
#endif
    case Task::Lifecycle:
      return {{"clearing the frame", clearFrame}};
#if VORTO_HAVE_OPENSSL
    case Task::Fingerprint:
      return {{"OpenSSL's MD5", digest}};
#endif
    default:
      break;
  }
  return {};
}
