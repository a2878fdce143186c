// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

namespace vorto::effects {

// Raises `count` values to a power, in place. What is not above 0, and NaN, stays as it is; infinity does unless the
// exponent is 0. The exponent is finite and not negative.
//
// Results lie within two units in the last place of the exact power, and are the same bits on every processor: the
// whole of it is computed in double precision, without fused operations, and rounded once.
void powerRow(float* values, std::size_t count, double exponent);

// The definition.
void powerRowScalar(float* values, std::size_t count, double exponent);

}  // namespace vorto::effects
