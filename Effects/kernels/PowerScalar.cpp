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

bool isRaised(float value, double exponent) {
  return value > 0 && !(std::isinf(value) && exponent > 0);
}

// The middle of the values that share an entry.
float middleOf(std::uint32_t bits) {
  constexpr std::uint32_t kHalf = 1U << (PowerTable::kEntryBits - 1);
  return std::bit_cast<float>((bits >> PowerTable::kEntryBits << PowerTable::kEntryBits) | kHalf);
}

}  // namespace

void powerRowScalar(float* values, std::size_t count, double exponent) {
  for (float* value = values; value != values + count; ++value) {
    if (isRaised(*value, exponent)) {
      *value = static_cast<float>(exponential(exponent * logarithm(static_cast<double>(*value))));
    }
  }
}

void powerRowScalar(double* values, std::size_t count, double exponent) {
  for (double* value = values; value != values + count; ++value) {
    if (*value > 0) *value = exponential(exponent * logarithm(*value));
  }
}

PowerTable::PowerTable(double exponentOfAll) : exponent(exponentOfAll), entries(kEntries + 1, std::nanf("")) {
  double term = 1;
  for (int i = 0; i < 4; ++i) {
    term *= (exponent - i) / (i + 1);
    terms[i] = static_cast<float>(term);
  }
  constexpr double kMostSteep = 16;
  if (exponent > kMostSteep) return;
  for (std::size_t i = 0; i < kEntries; ++i) {
    entries[i] = middleOf(static_cast<std::uint32_t>(kFirst + i) << kEntryBits);
  }
  powerRow(entries.data(), kEntries, exponent);
  // An entry's values lie within a factor of 2 of it: none of them may be subnormal or infinite.
  const auto isNearTheEnds = [](float power) { return !(power > 0x1p-124F && power < 0x1p126F); };
  std::replace_if(entries.begin(), entries.end() - 1, isNearTheEnds, std::nanf(""));
}

float powered(float value, const PowerTable& table) {
  if (!isRaised(value, table.exponent)) return value;
  const auto bits = std::bit_cast<std::uint32_t>(value);
  const std::size_t index = (bits >> PowerTable::kEntryBits) - PowerTable::kFirst;  // huge below the first
  const float entry = table.entries[std::min(index, PowerTable::kEntries)];
  if (std::isnan(entry)) {
    powerRowScalar(&value, 1, table.exponent);
    return value;
  }
  const float middle = middleOf(bits);
  const float r = (value - middle) / middle;
  const float* const t = table.terms;
  return entry + entry * ((((t[3] * r + t[2]) * r + t[1]) * r + t[0]) * r);
}

}  // namespace vorto::effects
