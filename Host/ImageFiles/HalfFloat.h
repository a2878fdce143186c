// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

namespace host {

// Samples of 16 bits, as files hold them, become floats of the same value, and the other way round the nearest half
// (the even one of two), infinity where there is none. The bits that tell one NaN from another stay, as far as they
// fit.
void halvesToFloats(const std::uint16_t* halves, std::size_t count, float* floats);
void floatsToHalves(const float* floats, std::size_t count, std::uint16_t* halves);

}  // namespace host
