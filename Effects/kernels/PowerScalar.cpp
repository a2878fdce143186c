// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Power.h"
#include "Effects/kernels/PowerSeries.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace vorto::effects {
namespace {

template <std::size_t count>
double polynomial(const double (&coefficients)[count], double x) {
  double sum = coefficients[0];
  for (std::size_t i = 1; i < count; ++i) sum = sum * x + coefficients[i];
  return sum;
}

double logarithm(double x) {
  using namespace power;
  const std::uint64_t shifted = std::bit_cast<std::uint64_t>(x) + kToExponent;
  const double exponent = static_cast<double>(shifted >> 52) - 1023;
  const auto m = std::bit_cast<double>((shifted & kMantissa) + kRootOfHalfBits);
  const double s = (m - 1) / (m + 1);
  return exponent + s * polynomial(kLogarithm, s * s);
}

double exponential(double y) {
  using namespace power;
  const double clamped = std::max(std::min(y, kMostExponent), -kMostExponent);
  const double rounded = clamped + kRounder;
  const double f = clamped - (rounded - kRounder);
  const auto scale = std::bit_cast<double>((std::bit_cast<std::uint64_t>(rounded) + 1023) << 52);
  return polynomial(kExponential, f) * scale;
}

}  // namespace

void powerRowScalar(float* values, std::size_t count, double exponent) {
  for (float* value = values; value != values + count; ++value) {
    if (*value > 0 && !(std::isinf(*value) && exponent > 0)) {
      *value = static_cast<float>(exponential(exponent * logarithm(static_cast<double>(*value))));
    }
  }
}

}  // namespace vorto::effects
