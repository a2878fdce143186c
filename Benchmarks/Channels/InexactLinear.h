// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <vector>

// What a linear gradient costs when exactness is given up: slopes hoisted out of the loop, single precision, no
// division. The yardstick for the exact tables.
struct InexactStop {
  float position;
  float argb[4];
};

void inexactLinear(const std::vector<InexactStop>& stops, std::uint8_t* out, std::uint32_t count);
void inexactLinear(const std::vector<InexactStop>& stops, float* out, std::uint32_t count);
