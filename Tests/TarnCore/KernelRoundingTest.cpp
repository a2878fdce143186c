// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Dispatch.h"
#include "Tests/TarnCore/EveryTarget.h"

#include <bit>
#include <cmath>

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

// The first number near a step of rounding, where the integer changes, that is rounded otherwise than in double
// precision; 0 when there is none.
template <int largest>
float wrongProduct() {
#if VORTO_BLOCK_OPS
  const BlockFloats d;
  for (int k = 1; k <= largest; ++k) {
    const auto center = static_cast<float>((k - 0.5) / largest);
    const std::uint32_t first = std::bit_cast<std::uint32_t>(center) - 8;
    for (std::uint32_t i = 0; i < 16; i += static_cast<std::uint32_t>(hn::Lanes(d))) {
      const auto v = hn::BitCast(d, hn::Iota(BlockWide(), static_cast<std::int32_t>(first + i)));
      HWY_ALIGN float numbers[hn::MaxLanes(d)];
      HWY_ALIGN std::int32_t integers[hn::MaxLanes(d)];
      hn::Store(v, d, numbers);
      hn::Store(roundedProduct<largest>(v), BlockWide(), integers);
      for (std::size_t lane = 0; lane < hn::Lanes(d); ++lane) {
        const float product = static_cast<float>(largest) * numbers[lane];
        const double expected = std::floor(static_cast<double>(product) + 0.5 + 1e-7);
        if (integers[lane] != static_cast<std::int32_t>(expected)) return numbers[lane];
      }
    }
  }
#endif
  return 0;
}

float wrongByte() {
  return wrongProduct<255>();
}
float wrongWord() {
  return wrongProduct<65535>();
}

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::kernels {

HWY_EXPORT(wrongQuotient);
HWY_EXPORT(wrongByte);
HWY_EXPORT(wrongWord);

namespace {

TEST(KernelRounding, EveryMantissaOverEveryAlpha) {
  onEveryTarget([] {
    for (int alpha = 1; alpha < 256 && !useScalar(); ++alpha) {
      const auto divisor = static_cast<float>(alpha * 0.00392156862745098);
      ASSERT_EQ(HWY_DYNAMIC_DISPATCH(wrongQuotient)(divisor), 0.0f) << alpha;
    }
  });
}

TEST(KernelRounding, EveryStepOfRounding) {
  onEveryTarget([] {
    if (useScalar()) return;
    EXPECT_EQ(HWY_DYNAMIC_DISPATCH(wrongByte)(), 0.0f);
    EXPECT_EQ(HWY_DYNAMIC_DISPATCH(wrongWord)(), 0.0f);
  });
}

}  // namespace
}  // namespace vorto::kernels
#endif
