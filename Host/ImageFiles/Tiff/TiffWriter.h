// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

namespace host::tiff {

bool writeTiff(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason);

}  // namespace host::tiff
