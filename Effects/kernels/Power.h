// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <vector>

namespace vorto::effects {

// Raises `count` values to a power, in place. What is not above 0, and NaN, stays as it is; infinity does unless the
// exponent is 0. The exponent is finite and not negative.
//
// Results lie within one unit in the last place of the exact power, and are the same bits on every processor: the
// whole of it is computed in double precision, without fused operations, and rounded once.
void powerRow(float* values, std::size_t count, double exponent);

// The definition.
void powerRowScalar(float* values, std::size_t count, double exponent);

// Of doubles up to 1: within 2^-31 of the exact power, relative to it, where that is above 2^-1000, and below 2^-999
// elsewhere. The same bits on every processor.
void powerRow(double* values, std::size_t count, double exponent);
void powerRowScalar(double* values, std::size_t count, double exponent);

// Of floats in great number: within two units in the last place of the exact power, the same bits on every processor.
//
// An entry holds the power of the middle c of 2^16 neighbouring floats, from 2^-40 to 2^17. With r = (x - c) / c, which
// is at most 2^-8, x^e is c^e (1 + e r + e (e - 1) / 2 r^2 ...), the binomial series (M. Abramowitz and I. A. Stegun,
// Handbook of Mathematical Functions, 3.6.8), of which four terms are left; what follows them is less than 2^-27 up to
// the exponent 16. Other values, other exponents and powers near the ends of the range take powerRow()'s way.
struct PowerTable {
  explicit PowerTable(double exponent);

  static constexpr int kEntryBits = 16;
  static constexpr std::size_t kFirst = (127U - 40U) << 7;
  static constexpr std::size_t kEntries = 57U << 7;

  double exponent;
  float terms[4];              // the series' factors of r, r^2, r^3 and r^4
  std::vector<float> entries;  // kEntries and one for all other values; NaN where powerRow() is the way
};

float powered(float value, const PowerTable& table);

}  // namespace vorto::effects
