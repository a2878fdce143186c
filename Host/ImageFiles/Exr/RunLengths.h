// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace host::exr {

// A byte up to 127 and the byte that is there once more than it says; or a byte above, and as many different ones as it
// is below 256.

// False unless what is stored makes as many bytes as there are, no less and no more.
bool unpackRunLengths(std::span<const std::uint8_t> stored, std::span<std::uint8_t> bytes);

// Returns how many bytes it takes; 0 when they do not fit.
std::size_t packRunLengths(std::span<const std::uint8_t> bytes, std::span<std::uint8_t> stored);

}  // namespace host::exr
