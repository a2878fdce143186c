// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

namespace host {

// Rows of 8 bits, gray or RGB. The quality is 1 to 100, by default 95; the "compression" says how colors are sampled:
// "444" (all of them, the default), "422" or "420"; there are no levels.
bool writeJpeg(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason);

}  // namespace host
