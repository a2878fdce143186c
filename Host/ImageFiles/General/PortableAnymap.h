// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

namespace host {

// The formats of pipes: P5 and P6 of 8 bits, or of 16 with the high byte first, and floats in the machine's order, from
// the last row to the first.
bool isPortableAnymap(FileFormat format);
bool isPortableAnymap(std::span<const std::uint8_t> file);
std::unique_ptr<ImageReader> openPortableAnymap(std::span<const std::uint8_t> file, std::string* reason);
bool writePortableAnymap(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason);

}  // namespace host
