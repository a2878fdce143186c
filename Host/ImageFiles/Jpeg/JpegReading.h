// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

namespace host {

// Null for a file that is no JPEG, is damaged, or holds less than its header says. Throws std::bad_alloc.
std::unique_ptr<ImageReader> openJpeg(std::span<const std::uint8_t> file, std::string* reason);

}  // namespace host
