// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/kernels/Unpremultiply.h"

#include <cstddef>
#include <cstdint>

namespace vorto::kernels {

// The truncating way of taking premultiplication off pixels whose first four bytes are alpha, red, green and blue,
// `step` bytes apart in both memories. With a and c normalised to 0..1 and in single precision, c' is
// (c - background x (1 - a)) / a limited to 0..1 where a > 0, else the background; bytes are 255 times the value, cut
// off to an integer and limited to 0..255 (NaN gives 0). The memories may be the same or overlap; pixels follow one
// another from the first on.
void unpremultiplyTruncated(std::uint8_t* destination, const std::uint8_t* source, std::size_t count, std::size_t step,
                            const Background& background);

// The same in place without a background: c' is c / a limited to 0..1, and a pixel of alpha 0 stays.
void unpremultiplyTruncatedInPlace(std::uint8_t* pixels, std::size_t count, std::size_t step);

// The definitions.
void unpremultiplyTruncatedScalar(std::uint8_t* destination, const std::uint8_t* source, std::size_t count,
                                  std::size_t step, const Background& background);
void unpremultiplyTruncatedInPlaceScalar(std::uint8_t* pixels, std::size_t count, std::size_t step);

}  // namespace vorto::kernels
