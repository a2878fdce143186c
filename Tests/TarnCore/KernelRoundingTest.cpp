// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCPixel.h"
#include "Tests/TarnCore/KernelTesting.h"

#include <bit>
#include <cmath>
#include <numeric>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Tests/TarnCore/KernelRoundingTest.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "TarnCore/kernels/Rounding-inl.h"

#if defined(__GNUC__) && !defined(__clang__)
// The compiler's own AVX-512 header.
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

// The rounding of vectors against the pixel types' own, in double precision.

HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {

// Rounds scale x v for 16 consecutive patterns from `first` on, as the kernels do.
void roundPatterns(std::uint32_t first, float scale, std::int32_t* out) {
  float in[16];
  for (std::uint32_t i = 0; i < 16; ++i) in[i] = std::bit_cast<float>(first + i);
#if VORTO_BLOCK_OPS
  const BlockFloats d;
  for (std::size_t i = 0; i < 16; i += hn::Lanes(d)) {
    const auto v = hn::LoadU(d, in + i);
    const auto product = hn::Min(hn::Mul(hn::Set(d, scale), v), hn::Set(d, 0x1p24f));
    hn::StoreU(biasedFloor(product), BlockWide(), out + i);
  }
#else
  for (int i = 0; i < 16; ++i) {
    out[i] = scale == 255 ? denormalizef<std::uint8_t>(in[i]) : denormalizef<std::uint16_t>(in[i]);
  }
#endif
}

// Reads every stored value as the kernels do.
void normalizeEvery(float* bytes, float* words) {
#if VORTO_BLOCK_OPS
  const BlockFloats d;
  std::vector<std::int32_t> values(65536);
  std::iota(values.begin(), values.end(), 0);
  for (std::size_t i = 0; i < 65536; i += hn::Lanes(d)) {
    const auto v = hn::LoadU(BlockWide(), values.data() + i);
    hn::StoreU(normalizedWords(v), d, words + i);
    if (i >= 256) continue;
    const auto pixels = hn::BitCast(BlockBytes(), v);
    hn::StoreU(normalizedByte<0>(pixels), d, bytes + i);
    hn::StoreU(normalizedByte<2>(hn::BitCast(BlockBytes(), hn::ShiftLeft<16>(v))), d, bytes + 256 + i);
  }
#else
  for (int i = 0; i < 65536; ++i) words[i] = static_cast<float>(i * 1.5259021896696422e-5);
  for (int i = 0; i < 512; ++i) bytes[i] = static_cast<float>(i % 256 * 0.00392156862745098);
#endif
}

// The first numerator of 2^23 consecutive patterns from 1 on whose quotient by `divisor` is not a division's; 0 when
// there is none.
float wrongQuotient(float divisor) {
#if VORTO_BLOCK_OPS
  const BlockFloats d;
  const auto divisors = hn::Set(d, divisor);
  const auto inverse = hn::Div(hn::Set(d, 1.0f), divisors);
  for (std::uint32_t i = 0; i < 1u << 23; i += static_cast<std::uint32_t>(hn::Lanes(d))) {
    const auto bits = hn::Iota(BlockWide(), static_cast<std::int32_t>(0x3F800000u + i));
    const auto n = hn::BitCast(d, bits);
    if (!hn::AllTrue(d, hn::Eq(quotient(n, divisors, inverse), hn::Div(n, divisors)))) return hn::GetLane(n);
  }
#else
  (void)divisor;
#endif
  return 0;
}

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::kernels {

HWY_EXPORT(roundPatterns);
HWY_EXPORT(normalizeEvery);
HWY_EXPORT(wrongQuotient);

namespace {

using kerneltesting::onEveryTarget;

// 16 patterns from `first` on. NaN is not for vectors.
void comparePatterns(std::uint32_t first) {
  if (std::isnan(std::bit_cast<float>(first | 15))) return;
  std::int32_t bytes[16];
  std::int32_t words[16];
  HWY_DYNAMIC_DISPATCH(roundPatterns)(first, 255.0f, bytes);
  HWY_DYNAMIC_DISPATCH(roundPatterns)(first, 65535.0f, words);
  for (std::uint32_t i = 0; i < 16; ++i) {
    const float v = std::bit_cast<float>(first + i);
    ASSERT_EQ(std::clamp(bytes[i], 0, 255), denormalizef<std::uint8_t>(v)) << std::hex << first + i;
    ASSERT_EQ(std::clamp(words[i], 0, 65535), denormalizef<std::uint16_t>(v)) << std::hex << first + i;
  }
}

TEST(KernelRounding, AroundEveryHalfAndEveryExponent) {
  onEveryTarget([] {
    for (const int largest : {255, 65535}) {
      for (int halves = 0; halves <= 2 * largest + 2; ++halves) {
        const float v = static_cast<float>(halves) / 2 / static_cast<float>(largest);
        const std::uint32_t bits = std::bit_cast<std::uint32_t>(v);
        comparePatterns(bits < 8 ? 0 : bits - 8);
        if (::testing::Test::HasFatalFailure()) return;
      }
    }
    for (std::uint32_t bits = 0; bits < 0xFFFF0000u; bits += 0x00010010u) {
      comparePatterns(bits);
      if (::testing::Test::HasFatalFailure()) return;
    }
  });
}

// Takes minutes: run when the rounding changes, with --gtest_also_run_disabled_tests.
TEST(KernelRounding, DISABLED_EveryFloatPattern) {
  for (std::uint32_t block = 0; block < 1u << 28; ++block) {
    comparePatterns(block << 4);
    if (::testing::Test::HasFatalFailure()) return;
  }
}

TEST(KernelRounding, EveryMantissaOverEveryAlpha) {
  onEveryTarget([] {
    for (int alpha = 1; alpha < 256; ++alpha) {
      const auto divisor = static_cast<float>(alpha * 0.00392156862745098);
      ASSERT_EQ(HWY_DYNAMIC_DISPATCH(wrongQuotient)(divisor), 0.0f) << alpha;
    }
  });
}

TEST(KernelRounding, EveryStoredValueReadsAsTheProductInDoublePrecision) {
  onEveryTarget([] {
    std::vector<float> bytes(512);
    std::vector<float> words(65536);
    HWY_DYNAMIC_DISPATCH(normalizeEvery)(bytes.data(), words.data());
    for (int i = 0; i < 512; ++i) {
      if (i % 256 == 0) {
        ASSERT_LE(std::abs(bytes[i]), 1e-20f);
      } else {
        ASSERT_EQ(bytes[i], static_cast<float>(i % 256 * 0.00392156862745098));
      }
    }
    for (int i = 0; i < 65536; ++i) ASSERT_EQ(words[i], static_cast<float>(i * 1.5259021896696422e-5));
  });
}

}  // namespace
}  // namespace vorto::kernels
#endif
