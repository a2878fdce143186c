// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

namespace host::exr {

bool writeExr(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason);

}  // namespace host::exr
