// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <span>

namespace host {

// Whether a PNG file is whole: every chunk there with the right checksum, up to the one that ends the file. Called
// before decoding, since the decoder reports damage on standard error by itself.
bool isWholePng(std::span<const std::uint8_t> file);

}  // namespace host
