// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Tiff/TiffKind.h"

#include <cstddef>
#include <cstdint>

namespace host::tiff {

// Spreads stored pixels, in this machine's byte order, to red, green, blue and alpha.
void expandPixels(const Kind& kind, const std::uint8_t* stored, std::size_t count, std::byte* pixels);

// The same of one of the planes: the first also fills alpha when there is none, and all colors of gray.
void expandPlane(const Kind& kind, std::size_t plane, const std::uint8_t* stored, std::size_t count, std::byte* pixels);

}  // namespace host::tiff
