// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Dispatch.h"
#include "Tests/TarnCore/EveryTarget.h"

#include <bit>

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

}  // namespace
}  // namespace vorto::kernels
#endif
