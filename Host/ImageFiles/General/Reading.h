// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

namespace host {

bool readImage(std::span<const std::uint8_t> file, std::uint64_t maximumBytes, ImagePixels* image, std::string* reason);

}  // namespace host
