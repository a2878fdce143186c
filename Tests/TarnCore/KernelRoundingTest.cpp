// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Depth.h"
#include "TarnCore/kernels/Dispatch.h"
#include "Tests/TarnCore/EveryTarget.h"
#include "Tests/TarnCore/PixelOracle.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>

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

// What Rounding-inl.h says of all numbers at once.

HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {

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

HWY_EXPORT(wrongQuotient);

namespace {

TEST(KernelRounding, EveryMantissaOverEveryAlpha) {
  onEveryTarget([] {
    for (int alpha = 1; alpha < 256 && !useScalar(); ++alpha) {
      const auto divisor = static_cast<float>(alpha * 0.00392156862745098);
      ASSERT_EQ(HWY_DYNAMIC_DISPATCH(wrongQuotient)(divisor), 0.0f) << alpha;
    }
  });
}

// Takes minutes: run when the rounding changes, with --gtest_also_run_disabled_tests and in every VORTO_SIMD.
TEST(KernelRounding, DISABLED_EveryFloatPattern) {
  constexpr std::uint32_t kBlock = 1u << 22;
  oracle::Bytes in(kBlock * 4), out(kBlock * 2), expected(kBlock * 2);
  for (std::uint64_t start = 0; start < std::uint64_t{1} << 32; start += kBlock) {
    for (std::uint32_t i = 0; i < kBlock; ++i) {
      const auto bits = static_cast<std::uint32_t>(start + i);
      std::memcpy(in.data() + std::size_t{i} * 4, &bits, 4);
    }
    for (const auto& [to, code] :
         {std::pair{DepthLayout::ARGB8, oracle::kARGB8}, {DepthLayout::RGBA16, oracle::kRGBA16}}) {
      const oracle::Layout layout = oracle::layoutOf(code);
      for (std::size_t i = 0; i < kBlock / 4; ++i) {
        oracle::convert(layout, &expected[i * layout.pixelBytes()], oracle::layoutOf(oracle::kFloat), &in[i * 16]);
      }
      convertDepth(out.data(), to, in.data(), DepthLayout::RGBAFloat, kBlock / 4);
      ASSERT_EQ(std::memcmp(out.data(), expected.data(), kBlock / 4 * layout.pixelBytes()), 0) << std::hex << start;
    }
  }
}

}  // namespace
}  // namespace vorto::kernels
#endif
