// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

namespace host {

// Rows of 8 or 16 bits. The method is "deflate", the format's only one and its default, or "none"; levels are 0 (as
// none) to 12. Without a level the picture is compressed as it comes, for speed, in little memory; with one it is held
// in memory as a whole. Throws std::bad_alloc.
bool writePng(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason);

}  // namespace host
